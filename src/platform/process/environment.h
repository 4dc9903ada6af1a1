#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace quiverion {

enum class StandardStream { output, error };

/// The arguments of the program, without its name, as UTF-8.
std::vector<std::string> CommandLineArguments(int argc, char** argv);

/// True where the stream is a terminal that a person looks at.
bool IsTerminal(StandardStream stream);

/// Writes all bytes to the stream, unbuffered. False where that failed.
bool WriteToStream(StandardStream stream, std::string_view bytes);

/// The decimal separator of the environment's locale; "." where that says nothing.
char EnvironmentDecimalSeparator();

/// `path` itself where it is absolute (or begins with a drive letter), else behind the current directory.
std::string AbsolutePath(const std::string& path);

/// True where both names lead to the same file or directory, or would lead there once it exists.
bool IsSameFile(const std::string& a, const std::string& b);

/// The same text for all names of one file in a directory: where the system makes no difference between upper and lower
/// case, in upper case.
std::string FileNameKey(std::string_view name);

/// All bytes of standard input.
std::string ReadStandardInput();

/// From now on the first request to end the program (Ctrl+C, SIGINT, SIGTERM, SIGHUP, a closed console) only counts as
/// one to abort, and the second ends it. A request that was ignored at the start stays so.
void CatchAbortRequests();

/// True once such a request has come.
bool AbortRequested();

/// Called by main before anything else. A broken pipe and a file beyond the allowed size become errors of the write
/// instead of ending the program. A standard stream that is closed is taken, so that no file that is opened later stands
/// in its place and receives what is printed. Memory that is freed, up to 256 MB, is kept instead of given back to the
/// system: the next command of a run takes the same amount again, and fresh pages cost more than most commands.
void PrepareProcess();

}  // namespace quiverion
