#pragma once

#include <VeskTimelineKit/document.h>
#include <VeskTimelineKit/vesktimelinekit_export.h>

#include <functional>
#include <memory>
#include <optional>

namespace VeskTimeline::Kit {

struct ModelTree;

/// The tracks and items of a document as a model holds them, made beforehand, on any thread: so that a window goes on
/// answering while millions of items are made. StandardTimelineModel::setDocument() then only takes it over.
///
/// Can be moved, not copied. Destroying one, at its size, takes as long as making it.
class VESKTIMELINEKIT_EXPORT PreparedDocument
{
public:
    explicit PreparedDocument(const Document& document);
    PreparedDocument(PreparedDocument&& other) noexcept;
    PreparedDocument& operator=(PreparedDocument&& other) noexcept;
    ~PreparedDocument();

    /// @param progress called now and then with the share done, from 0 to 1; returning false gives up
    /// @return nothing when given up
    static std::optional<PreparedDocument> prepare(const Document& document,
                                                   const std::function<bool(double share)>& progress);

private:
    friend class StandardTimelineModel;

    explicit PreparedDocument(std::unique_ptr<ModelTree> tree);

    std::unique_ptr<ModelTree> m_tree;
};

} // namespace VeskTimeline::Kit
