#pragma once

#include "editor/documentprinter.h"
#include "editor/texttransfer.h"

#include <QString>

namespace quorvane {

class NSWorkspace;
class Spelling;
class StyleMemory;

/// What the commands on a document's text ask of the world.
struct EditorSurroundings
{
    TransferSurroundings transfer;
    PrintingSurroundings printing;
    NSWorkspace &workspace;
    Spelling &spelling;
    StyleMemory &styles;
    /// Where readable copies for other programs may be put; empty where there is no such place. See
    /// RuntimeFolder.
    QString runtimePath = {};
};

} // namespace quorvane
