#pragma once

/// The memory of new and delete. For the sources of this folder only.
namespace quiverion::windows {

/// From now on large freed blocks, up to 64 and 256 MB, are kept for the next new of about their size.
void KeepFreedMemory();

}  // namespace quiverion::windows
