#pragma once

/// The memory of new and delete. For the sources of this folder only.
namespace quiverion::windows {

/// From now on, freed blocks of 16 KB to 64 MB, up to 256 MB in total, are kept for the next new of about their size.
void KeepFreedMemory();

}  // namespace quiverion::windows
