#pragma once

#include <QtGlobal>

namespace Workbench {

/// Keeps one remark of Qt's offscreen platform off standard error for as long as it lives: that it cannot pass on the
/// limits of a window's size, which means nothing where there is no window manager. All other messages get through.
/// One at a time.
class OffscreenSilence
{
public:
    OffscreenSilence();
    ~OffscreenSilence();
    Q_DISABLE_COPY_MOVE(OffscreenSilence)
};

} // namespace Workbench
