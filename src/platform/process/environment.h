#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace quiverion {

enum class StandardStream { output, error };

/// The arguments of the program, without its name, as UTF-8.
std::vector<std::string> CommandLineArguments(int argc, char** argv);

/// True if the stream is a terminal.
bool IsTerminal(StandardStream stream);

/// Writes all bytes to the stream, unbuffered. False if that failed.
bool WriteToStream(StandardStream stream, std::string_view bytes);

/// The decimal separator of the environment's locale; "." if that is unknown.
char EnvironmentDecimalSeparator();

/// `path` itself if it is absolute (or begins with a drive letter), else `path` relative to the current directory.
std::string AbsolutePath(const std::string& path);

/// True if both names refer to the same file or directory, or would do so once it exists.
bool IsSameFile(const std::string& a, const std::string& b);

/// A key that is the same for all names of one file in a directory: upper case if the system ignores case.
std::string FileNameKey(std::string_view name);

/// All bytes of standard input.
std::string ReadStandardInput();

/// From now on, the first request to end the program (Ctrl+C, SIGINT, SIGTERM, SIGHUP, a closed console) only counts as
/// a request to abort, and the second one ends it. A signal that was ignored at the start stays ignored.
void CatchAbortRequests();

/// True once such a request has been received.
bool AbortRequested();

/// For a program with windows that is called for its answer: its standard streams are those of the console that it was
/// called from, unless they lead elsewhere already. Systems other than Windows do so by themselves.
void UseCallersConsole();

/// main calls this first. A broken pipe and a file beyond the allowed size become write errors instead of ending the
/// program. A closed standard stream is occupied, so that no file opened later takes its number and receives what is
/// printed. Freed memory, up to 256 MB, is kept instead of returned to the system, because the next command of a run
/// needs the same amount and fresh pages cost more than most commands.
void PrepareProcess();

}  // namespace quiverion
