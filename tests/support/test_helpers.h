// Helpers shared by the tests: stream capture, temporary folders, files,
// skeleton texts and the printed error chain.
#pragma once

#include <iosfwd>
#include <sstream>
#include <string>
#include <vector>

// Swaps a stream's buffer for a string buffer for the capture's lifetime.
class StreamCapture
{
public:
    explicit StreamCapture(std::ostream& stream)
        : _stream(stream)
        , _saved(stream.rdbuf())
    {
        _stream.rdbuf(_buffer.rdbuf());
    }
    ~StreamCapture() { _stream.rdbuf(_saved); }
    StreamCapture(const StreamCapture&) = delete;
    StreamCapture& operator=(const StreamCapture&) = delete;

    std::string text() const { return _buffer.str(); }

private:
    std::ostream& _stream;
    std::streambuf* _saved;
    std::ostringstream _buffer;
};

// A program's main run in the test's own process, with both output streams
// captured; args[0] is the program's name.
struct MainOutcome
{
    int status;
    std::string out;
    std::string err;
};
MainOutcome runMain(int (*programMain)(int, const char* const*),
                    std::vector<const char*> args);

// A fresh folder under the system's temporary directory, removed with all
// its content at the end of the test.
class TempDir
{
public:
    TempDir();
    ~TempDir();
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;

    const std::string& path() const { return _path; }
    std::string file(const std::string& name) const
    {
        return _path + "/" + name;
    }

private:
    std::string _path;
};

void writeFile(const std::string& path, const std::string& content);
std::string readFile(const std::string& path);
// The names in a folder, "." and ".." aside, in the system's order.
std::vector<std::string> filesIn(const std::string& folder);
// The text with every "\n" turned into "\r\n", as a Windows tool writes it.
std::string withCRLF(const std::string& text);

// A skeleton file: its root's DOF order, :bonedata and :hierarchy sections
// are given, the rest is fixed (radians, the given length unit).
std::string skeletonText(const std::string& rootOrder,
                         const std::string& bones,
                         const std::string& hierarchy,
                         const std::string& lengthUnit = "1");
// One bone block on one line; the DOF list may hold limits and groups.
std::string boneBlock(
    const std::string& name,
    const std::string& dofs = "",
    const std::string& geometry = "direction 1 0 0 length 1 axis 0 0 0 XYZ");

// What KtCheckException prints for the pending chain (and clears it); empty
// when nothing is pending.
std::string printedChain();
// The expected print of an error chain, head first, wrapped as printed.
std::string errorBlock(std::initializer_list<const char*> messages);
std::string warningBlock(std::initializer_list<const char*> messages);
