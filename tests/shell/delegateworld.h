#pragma once

#include "document/documentfixture.h"
#include "platform/nsdocumentcontroller.h"
#include "product/release.h"
#include "shell/myappdelegate.h"
#include "support/nobodyloader.h"
#include "support/recordingaccess.h"
#include "update/qvphonehome.h"

namespace quorvane {

/// An application delegate over a world in memory; without windows.
struct DelegateWorld
{
    virtual ~DelegateWorld() = default;

    virtual std::unique_ptr<NSDocument> make()
    {
        return std::make_unique<MyDocument>(world.surroundings());
    }

    AppSurroundings surroundings()
    {
        MyAppDelegate::initialize(world.defaults, phoneHome);
        return {world.defaults,
                documents,
                timers,
                world.queue,
                world.alerts,
                world.panels,
                world.workspace,
                world.fontManager,
                access,
                phoneHome,
                {}};
    }

    World world;
    FakeTimers timers;
    RecordingAccess access;
    NobodyLoader loader;
    ImmediateBackground background;
    QVPhoneHome phoneHome {{world.defaults, world.alerts, world.workspace, loader, background, [] {
                                return QDateTime(QDate(2020, 5, 6), QTime(12, 0));
                            }}};
    NSDocumentController documents {world.surroundings().machinery, world.alerts, documentExtension,
                                    [this] {
                                        return make();
                                    }};
    MyAppDelegate delegate {surroundings()};
};

} // namespace quorvane
