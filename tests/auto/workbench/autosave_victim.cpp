// A program that changes a timeline and is killed: tst_autosave starts it.

#include "workbench/autosave.h"

#include <VeskTimelineKit/standard_timeline_model.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QTimer>

#include <cstdio>

using namespace VeskTimeline::Kit;

int main(int argc, char* argv[])
{
    const QCoreApplication application(argc, argv);
    const QString folder = QString::fromLocal8Bit(argv[1]);
    Document document;
    for (int i = 0; i < 1000; ++i)
        document.track({QStringLiteral("A")}).items.push_back({QString::number(i), i * 1000, 500, {}});
    StandardTimelineModel model;
    model.setDocument(document);
    Workbench::Autosave autosave(model, folder);
    autosave.startFor(std::make_shared<const Document>(document), {QStringLiteral("/x/plan.csv")});

    // As the user drags an item until the end.
    int step = 0;
    QTimer drag;
    QObject::connect(&drag, &QTimer::timeout, &model, [&] {
        model.setItemStartTime(7, 7000 + ++step);
        std::printf("%d %lld\n", step, static_cast<long long>(QDateTime::currentMSecsSinceEpoch()));
        std::fflush(stdout);
    });
    drag.start(20);
    return QCoreApplication::exec();
}
