// Helpers shared by the tests.
#include "support/test_helpers.h"

#include <cstdlib>
#include <dirent.h>
#include <fstream>
#include <ftw.h>
#include <iostream>
#include <iterator>
#include <stdexcept>
#include <unistd.h>

#include "toolkit/KtError.h"

MainOutcome runMain(int (*programMain)(int, const char* const*),
                    std::vector<const char*> args)
{
    StreamCapture out(std::cout);
    StreamCapture err(std::cerr);
    int status = programMain(static_cast<int>(args.size()), args.data());
    return {status, out.text(), err.text()};
}

TempDir::TempDir()
{
    const char* base = std::getenv("TMPDIR");
    std::string pattern =
        std::string(base && *base ? base : "/tmp") + "/motbake-test-XXXXXX";
    if (!mkdtemp(&pattern[0]))
        throw std::runtime_error("cannot create " + pattern);
    _path = pattern;
}

namespace
{

int removeEntry(const char* path, const struct stat*, int, struct FTW*)
{
    return ::remove(path);
}

std::string block(const char* prefix,
                  const char* indent,
                  std::initializer_list<const char*> messages)
{
    std::string text = std::string("\n\n") + prefix;
    bool head = true;
    for (const char* message : messages)
    {
        if (!head)
            text += indent;
        // Long messages (with temporary paths in them) wrap as printed; the
        // wrapping itself has tests of its own.
        KtStr wrapped = KtWrapString(message, 70, 8);
        wrapped.replaceAll("\n", (std::string("\n") + indent).c_str());
        text += wrapped.text();
        text += "\n";
        head = false;
    }
    return text + "\n";
}

} // namespace

TempDir::~TempDir()
{
    nftw(_path.c_str(), removeEntry, 16, FTW_DEPTH | FTW_PHYS);
}

void writeFile(const std::string& path, const std::string& content)
{
    std::ofstream out(path, std::ios::binary);
    out << content;
}

std::string readFile(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

std::vector<std::string> filesIn(const std::string& folder)
{
    std::vector<std::string> names;
    DIR* dir = opendir(folder.c_str());
    while (dirent* entry = dir ? readdir(dir) : nullptr)
        if (std::string(".") != entry->d_name &&
            std::string("..") != entry->d_name)
            names.push_back(entry->d_name);
    if (dir)
        closedir(dir);
    return names;
}

std::string withCRLF(const std::string& text)
{
    std::string crlf;
    for (char c : text)
        crlf += c == '\n' ? std::string("\r\n") : std::string(1, c);
    return crlf;
}

std::string skeletonText(const std::string& rootOrder,
                         const std::string& bones,
                         const std::string& hierarchy,
                         const std::string& lengthUnit)
{
    return ":version 1.10\n:name test\n:units\n  mass 1.0\n  length " +
           lengthUnit + "\n  angle rad\n:root\n  order " + rootOrder +
           "\n  axis XYZ\n  position 0 0 0\n  orientation 0 0 0\n"
           ":bonedata\n" +
           bones + ":hierarchy\n  begin\n" + hierarchy + "  end\n";
}

std::string boneBlock(const std::string& name,
                      const std::string& dofs,
                      const std::string& geometry)
{
    return "  begin name " + name + " " + geometry +
           (dofs.empty() ? "" : " dof " + dofs) + " end\n";
}

std::string printedChain()
{
    StreamCapture capture(std::cerr);
    KtCheckException();
    return capture.text();
}

std::string errorBlock(std::initializer_list<const char*> messages)
{
    return block("ERROR: ", "       ", messages);
}

std::string warningBlock(std::initializer_list<const char*> messages)
{
    return block("WARNING: ", "         ", messages);
}
