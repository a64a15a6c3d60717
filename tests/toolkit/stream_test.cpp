// Compressed file streams, run against the real compression commands and,
// where the arguments themselves are checked, against small stand-in tools.
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <glob.h>
#include <string>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "support/test_helpers.h"
#include "toolkit/KtCompStream.h"
#include "toolkit/KtError.h"

namespace
{

// Large enough that the command fills the pipe and has to wait for us.
std::string motionText(int frames = 20000)
{
    std::string text = ":FULLY-SPECIFIED\n:DEGREES\n";
    for (int frame = 1; frame <= frames; ++frame)
        text += std::to_string(frame) + "\nroot 0 17.5 " +
                std::to_string(frame % 360) + " -4.25 0 90\n";
    return text;
}

std::string readAll(std::istream& in)
{
    std::string text;
    char chunk[4096];
    while (in.read(chunk, sizeof chunk) || in.gcount() > 0)
        text.append(chunk, in.gcount());
    return text;
}

std::string pipeDirectory()
{
    struct stat info;
    bool traditional = stat("/usr/tmp", &info) == 0 && S_ISDIR(info.st_mode);
    return traditional ? "/usr/tmp" : "/tmp";
}

std::string pipePath(const char* stem, int instance)
{
    return pipeDirectory() + "/" + stem + std::to_string(instance) + "." +
           std::to_string(getpid());
}

// Pipes of this process still in the pipe directory.
std::size_t leftoverPipes()
{
    glob_t found;
    std::string pattern = pipePath("comp*stream", 0);
    pattern.replace(pattern.rfind("0."), 1, "*");
    glob(pattern.c_str(), 0, nullptr, &found);
    std::size_t count = found.gl_pathc;
    globfree(&found);
    return count;
}

// Silences the commands' own complaints on standard error.
class QuietStderr
{
public:
    QuietStderr()
        : _saved(dup(2))
    {
        int null = open("/dev/null", O_WRONLY);
        dup2(null, 2);
        close(null);
    }
    ~QuietStderr()
    {
        dup2(_saved, 2);
        close(_saved);
    }

private:
    int _saved;
};

// Every case runs in a fresh folder under a watchdog (a hang ends the test)
// and must leave no pipe and no child process behind.
class CompStream : public testing::Test
{
protected:
    void SetUp() override
    {
        alarm(60);
        const char* path = std::getenv("PATH");
        _savedPath = path ? path : "";
        getcwd(_savedCwd, sizeof _savedCwd);
    }
    void TearDown() override
    {
        setenv("PATH", _savedPath.c_str(), 1);
        chdir(_savedCwd);
        EXPECT_EQ(0u, leftoverPipes());
        EXPECT_EQ(-1, waitpid(-1, nullptr, WNOHANG)) << "a child is left";
        alarm(0);
    }

    std::string file(const std::string& name) const { return _dir.file(name); }
    // Runs a shell command of the test's own, on names it controls.
    void run(const std::string& command)
    {
        ASSERT_EQ(0, std::system(command.c_str())) << command;
    }
    std::string compressed(const std::string& name,
                           const std::string& tool,
                           const std::string& text)
    {
        writeFile(file("plain.tmp"), text);
        run(tool + " <" + file("plain.tmp") + " >" + file("packed.tmp"));
        rename(file("packed.tmp").c_str(), file(name).c_str());
        return file(name);
    }
    // A stand-in for a command, first in PATH, that prints its arguments.
    void fakeTool(const std::string& name)
    {
        mkdir(file("bin").c_str(), 0755);
        writeFile(
            file("bin/" + name),
            "#!/bin/sh\nfor a in \"$@\"; do printf '[%s]' \"$a\"; done\n");
        chmod(file("bin/" + name).c_str(), 0755);
        setenv("PATH", (file("bin") + ":" + _savedPath).c_str(), 1);
    }

    TempDir _dir;
    std::string _savedPath;
    char _savedCwd[4096] = {};
};

} // namespace

TEST_F(CompStream, ReadsEachCompressionThroughItsCommand)
{
    std::string text = motionText();
    for (auto [name, tool] : {std::pair{"walk.amc.gz", "gzip -9"},
                              std::pair{"walk.amc.Z", "compress"}})
    {
        KtCompIFStream in;
        in.open(compressed(name, tool, text).c_str());
        ASSERT_TRUE(in.is_open()) << name << printedChain();
        EXPECT_EQ(1, in.compressed());
        EXPECT_TRUE(readAll(in) == text) << name;
    }
}

TEST_F(CompStream, JpegGoesThroughDjpegWithItsFlags)
{
    fakeTool("djpeg");
    KtCompIFStream in;
    writeFile(file("scan.jpeg"), "");
    in.open(file("scan.jpeg").c_str());
    EXPECT_EQ("[-gsi][" + file("scan.jpeg") + "]", readAll(in));

    // Today's djpeg may refuse the flags: the data then just ends.
    setenv("PATH", _savedPath.c_str(), 1);
    QuietStderr quiet;
    KtCompIFStream real;
    run("printf 'P5 2 2 255 abcd' | cjpeg >" + file("real.jpeg"));
    real.open(file("real.jpeg").c_str());
    EXPECT_TRUE(real.is_open());
    EXPECT_EQ(1, real.compressed());
    readAll(real);
    EXPECT_TRUE(real.eof());
}

TEST_F(CompStream, ResolvesAMissingNameToItsCompressedSibling)
{
    struct Case
    {
        bool plain, gz, z;
        const char* expected;
        int compressed;
    } cases[] = {{false, true, false, "gz", 1},
                 {false, true, true, "gz", 1},
                 {false, false, true, "Z", 1},
                 {true, true, true, "plain", 0}};
    for (const Case& c : cases)
    {
        TempDir dir;
        std::string walk = dir.file("walk.amc");
        if (c.plain)
            writeFile(walk, "plain");
        if (c.gz)
            run("printf gz | gzip >" + walk + ".gz");
        if (c.z)
            // compress exits 2 when the data did not shrink.
            run("printf Z | compress >" + walk + ".Z; test -s " + walk + ".Z");
        KtCompIFStream in;
        in.open(walk.c_str());
        EXPECT_EQ(c.compressed, in.compressed()) << c.expected;
        EXPECT_EQ(c.expected, readAll(in));
    }
}

TEST_F(CompStream, ReadsNamesWithoutARecognisedEndingAsPlainFiles)
{
    chdir(_dir.path().c_str());
    for (const char* name : {"x.GZ", ".gz", ".Z", "x.z", "x.jpg", "x.gz.txt"})
    {
        writeFile(name, "plain text\n");
        KtCompIFStream in;
        in.open(name);
        EXPECT_EQ(0, in.compressed()) << name;
        EXPECT_EQ("plain text\n", readAll(in)) << name;
    }
}

TEST_F(CompStream, FileNamesReachTheCommandAsOneArgument)
{
    chdir(_dir.path().c_str());
    const char* names[] = {"take 1.amc.gz",
                           "a;b&c|d$(touch HACKED)`touch HACKED`*?'\"<>.gz",
                           "-dash.amc.gz"};
    for (const char* name : names)
    {
        std::string text = std::string("data of ") + name + "\n";
        compressed(name, "gzip", text);
        KtCompIFStream in;
        in.open(name);
        EXPECT_EQ(text, readAll(in)) << name;
    }
    fakeTool("gunzip");
    KtCompIFStream in;
    in.open("-dash.amc.gz");
    EXPECT_EQ("[-c][./-dash.amc.gz]", readAll(in));
    EXPECT_NE(0, access("HACKED", F_OK));
}

TEST_F(CompStream, ReportsAToolThatIsNotInPath)
{
    std::string walk = compressed("walk.amc.gz", "gzip", "x");
    std::string noTool = "Cannot find command 'gunzip' to uncompress\n'" +
                         walk + "'.\nThis command needs to be in your path.";
    // Empty entries never stand for the current directory.
    mkdir(file("bin").c_str(), 0755);
    chdir(file("bin").c_str());
    writeFile("gunzip", "#!/bin/sh\n");
    chmod("gunzip", 0755);
    for (const char* path : {"", "::", static_cast<const char*>(nullptr)})
    {
        path ? setenv("PATH", path, 1) : unsetenv("PATH");
        KtCompIFStream in;
        in.open(walk.c_str());
        EXPECT_TRUE(in.fail());
        EXPECT_EQ(errorBlock({noTool.c_str()}), printedChain());
    }
}

TEST_F(CompStream, ReportsACommandThatCannotStart)
{
    fakeTool("gunzip");
    writeFile(file("bin/gunzip"), "not a program\n");
    KtCompIFStream in;
    in.open(compressed("walk.amc.gz", "gzip", "x").c_str());
    EXPECT_TRUE(in.fail());
    EXPECT_EQ(errorBlock({"Unable to decompress file.", "Exec format error"}),
              printedChain());
}

TEST_F(CompStream, CorruptDataEndsTheInputWithoutHanging)
{
    QuietStderr quiet;
    std::string text = motionText();
    std::string whole = readFile(compressed("whole.gz", "gzip", text));
    writeFile(file("cut.gz"), whole.substr(0, whole.size() / 2));
    writeFile(file("junk.gz"), "this is not gzip data\n");
    for (const char* name : {"cut.gz", "junk.gz"})
    {
        KtCompIFStream in;
        in.open(file(name).c_str());
        ASSERT_TRUE(in.is_open());
        std::string read = readAll(in);
        EXPECT_TRUE(in.eof());
        EXPECT_LT(read.size(), text.size());
        EXPECT_EQ(text.substr(0, read.size()), read) << name;
    }
}

TEST_F(CompStream, ClosingEarlyStopsTheCommand)
{
    std::string walk = compressed("walk.amc.gz", "gzip", motionText(200000));
    KtCompIFStream first, second;
    first.open(walk.c_str());
    second.open(walk.c_str());
    std::string line;
    std::getline(first, line);
    EXPECT_EQ(":FULLY-SPECIFIED", line);
    first.close();
    EXPECT_FALSE(first.is_open());
    // The destructor of the unread second stream stops its command too.
}

TEST_F(CompStream, ExistingFileAtThePipePathIsNeverTouched)
{
    KtCompIFStream in;
    std::string pipe = pipePath("compifstream", in.instance());
    symlink(file("target").c_str(), pipe.c_str());
    in.open(compressed("walk.amc.gz", "gzip", "x").c_str());
    unlink(pipe.c_str());
    EXPECT_TRUE(in.fail());
    EXPECT_NE(0, access(file("target").c_str(), F_OK));
    std::string message = "Unable to create named pipe \"" + pipe + "\".";
    EXPECT_EQ(errorBlock({message.c_str(), "File exists"}), printedChain());
}

TEST_F(CompStream, PendingErrorOrMissingFileStopsTheOpen)
{
    std::string walk = compressed("walk.amc.gz", "gzip", "x");
    KtError("Earlier failure.");
    KtCompIFStream in;
    in.open(walk.c_str());
    EXPECT_TRUE(in.fail());
    EXPECT_EQ(errorBlock({"Earlier failure."}), printedChain());

    std::string missing = file("missing.amc");
    KtCompIFStream none;
    none.open(missing.c_str());
    EXPECT_TRUE(none.fail());
    EXPECT_EQ(errorBlock({("Unable to read \"" + missing + "\".").c_str(),
                          "File does not exist."}),
              printedChain());
}

TEST_F(CompStream, InstanceNumbersCountPerClass)
{
    KtCompIFStream a;
    KtCompOFStream x;
    KtCompIFStream b;
    KtCompOFStream y;
    EXPECT_EQ(a.instance() + 1, b.instance());
    EXPECT_EQ(x.instance() + 1, y.instance());
}

TEST_F(CompStream, WrittenDataDecompressesToExactlyWhatWasWritten)
{
    std::string text = motionText();
    for (auto [name, tool] : {std::pair{"out.gz", "gzip -dc"},
                              std::pair{"out.Z", "uncompress -c"},
                              std::pair{"out.mov", "cat"}})
    {
        auto unpacked = [&, tool = tool](const std::string& path)
        {
            run(std::string(tool) + " <" + path + " >" + file("back"));
            return readFile(file("back"));
        };
        // Two at once: neither command may hold the other's pipe open. Tiny
        // data that does not shrink is complete as well.
        KtCompOFStream out, tiny;
        out.open(file(name).c_str());
        tiny.open(file(std::string("tiny-") + name).c_str());
        ASSERT_TRUE(out.is_open() && tiny.is_open()) << printedChain();
        out << text;
        tiny << "x";
        out.close();
        tiny.close();
        EXPECT_TRUE(out.good() && tiny.good()) << name;
        EXPECT_TRUE(unpacked(file(name)) == text) << name;
        EXPECT_EQ("x", unpacked(file(std::string("tiny-") + name)));
    }
}

// The real cjpeg cannot make an image of text; the stand-in gzip ends
// before reading anything, so the writes meet a pipe without a reader.
TEST_F(CompStream, FailedCompressorShowsAfterCloseWithoutSigpipe)
{
    fakeTool("gzip");
    writeFile(file("bin/gzip"), "#!/bin/sh\nexit 3\n");
    QuietStderr quiet;
    sigset_t before, after;
    pthread_sigmask(SIG_SETMASK, nullptr, &before);
    for (const char* name : {"out.jpeg", "out.gz"})
    {
        KtCompOFStream out;
        out.open(file(name).c_str());
        ASSERT_TRUE(out.is_open()) << name;
        out << motionText();
        out.close();
        EXPECT_TRUE(out.fail()) << name;
    }
    pthread_sigmask(SIG_SETMASK, nullptr, &after);
    EXPECT_EQ(sigismember(&before, SIGPIPE), sigismember(&after, SIGPIPE));
    sigpending(&after);
    EXPECT_FALSE(sigismember(&after, SIGPIPE));
}

TEST_F(CompStream, OutputReportsMissingToolAndUnwritablePath)
{
    setenv("PATH", file("bin").c_str(), 1);
    std::string out = file("out.Z");
    KtCompOFStream stream;
    stream.open(out.c_str());
    EXPECT_TRUE(stream.fail());
    std::string noTool = "Cannot find command 'compress' to compress\n'" + out +
                         "'.\nThis command needs to be in your path.";
    EXPECT_EQ(errorBlock({noTool.c_str()}), printedChain());

    std::string nowhere = file("nowhere/out.gz");
    KtCompOFStream lost;
    lost.open(nowhere.c_str());
    EXPECT_TRUE(lost.fail());
    EXPECT_EQ(errorBlock({("File \"" + nowhere + "\" is unwritable.").c_str(),
                          ("Parent directory \"" + file("nowhere") +
                           "\" does not exist.")
                              .c_str()}),
              printedChain());
}
