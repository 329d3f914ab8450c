#pragma once

#include "editor/documentprinter.h"
#include "editor/texttransfer.h"

namespace quorvane {

class NSWorkspace;
class Spelling;

/// What the commands on a document's text ask of the world.
struct EditorSurroundings
{
    TransferSurroundings transfer;
    PrintingSurroundings printing;
    NSWorkspace &workspace;
    Spelling &spelling;
};

} // namespace quorvane
