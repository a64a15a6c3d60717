// Helpers shared by the tests: stream capture, temporary folders, files and
// the printed error chain.
#pragma once

#include <iosfwd>
#include <sstream>
#include <string>

// Swaps a stream's buffer for a string buffer for the capture's lifetime.
class StreamCapture
{
public:
    explicit StreamCapture(std::ostream& stream);
    ~StreamCapture();
    StreamCapture(const StreamCapture&) = delete;
    StreamCapture& operator=(const StreamCapture&) = delete;

    std::string text() const { return _buffer.str(); }

private:
    std::ostream& _stream;
    std::streambuf* _saved;
    std::ostringstream _buffer;
};

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
// The text with every "\n" turned into "\r\n", as a Windows tool writes it.
std::string withCRLF(const std::string& text);

// What KtCheckException prints for the pending chain (and clears it); empty
// when nothing is pending.
std::string printedChain();
// The expected print of an error chain, head first, wrapped as printed.
std::string errorBlock(std::initializer_list<const char*> messages);
std::string warningBlock(std::initializer_list<const char*> messages);
