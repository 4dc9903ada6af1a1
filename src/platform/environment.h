#pragma once

#include <string>
#include <string_view>

namespace quiverion {

enum class StandardStream { output, error };

/// True where the stream is a terminal that a person looks at.
bool IsTerminal(StandardStream stream);

/// Writes all bytes to the stream, unbuffered. False where that failed.
bool WriteToStream(StandardStream stream, std::string_view bytes);

/// A broken pipe is reported by WriteToStream instead of ending the program.
void IgnoreBrokenPipes();

/// The decimal separator of the environment's locale; "." where that says nothing.
char EnvironmentDecimalSeparator();

/// `path` itself where it is absolute (or begins with a drive letter), else behind the current directory.
std::string AbsolutePath(const std::string& path);

/// True where both names lead to the same directory.
bool IsSameDirectory(const std::string& a, const std::string& b);

/// All bytes of standard input.
std::string ReadStandardInput();

/// Tells the allocator to keep memory that is freed, up to 256 MB, instead of giving it back to the system: the next
/// command of a run takes the same amount again, and fresh pages cost more than most commands. Called once by main.
void KeepFreedMemory();

}  // namespace quiverion
