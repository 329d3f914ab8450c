#pragma once

#include "editor/documentprinter.h"
#include "editor/texttransfer.h"

namespace quorvane {

class NSWorkspace;
class StyleMemory;

/// What the commands on a document's text ask of the world.
struct EditorSurroundings
{
    TransferSurroundings transfer;
    PrintingSurroundings printing;
    NSWorkspace &workspace;
    StyleMemory &styles;
};

} // namespace quorvane
