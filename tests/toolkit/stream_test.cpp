// Compressed file streams, run against the real compression commands and,
// where the arguments themselves are checked, against small stand-in tools.
#include <csignal>
#include <cstdlib>
#include <random>
#include <string>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

#include <gtest/gtest.h>

#include "support/test_helpers.h"
#include "toolkit/KtCompStream.h"
#include "toolkit/Kt_CompPipe.h"

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

// Every case runs in a fresh folder under a watchdog (a hang ends the test),
// makes its pipes in a folder of its own, and must leave nothing there and
// no child process behind.
class CompStream : public testing::Test
{
protected:
    void SetUp() override
    {
        alarm(60);
        const char* path = std::getenv("PATH");
        _savedPath = path ? path : "";
        getcwd(_savedCwd, sizeof _savedCwd);
        mkdir(_pipes.c_str(), 0755);
        useCandidates({_pipes});
    }
    void TearDown() override
    {
        setenv("PATH", _savedPath.c_str(), 1);
        chdir(_savedCwd);
        Kt_CompPipe::setCandidateDirectories(nullptr);
        EXPECT_TRUE(filesIn(_pipes).empty());
        EXPECT_EQ(-1, waitpid(-1, nullptr, WNOHANG)) << "a child is left";
        alarm(0);
    }

    std::string file(const std::string& name) const { return _dir.file(name); }
    void useCandidates(std::vector<std::string> directories)
    {
        _directories = std::move(directories);
        _candidates.clear();
        for (const std::string& directory : _directories)
            _candidates.push_back(directory.c_str());
        _candidates.push_back(nullptr);
        Kt_CompPipe::setCandidateDirectories(_candidates.data());
    }
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
    // A stand-in for a command, first in PATH; by default it prints its
    // arguments.
    void fakeTool(const std::string& name,
                  const std::string& script =
                      "for a in \"$@\"; do printf '[%s]' \"$a\"; done")
    {
        mkdir(file("bin").c_str(), 0755);
        writeFile(file("bin/" + name), "#!/bin/sh\n" + script + "\n");
        chmod(file("bin/" + name).c_str(), 0755);
        setenv("PATH", (file("bin") + ":" + _savedPath).c_str(), 1);
    }

    // Silences the commands' own complaints on standard error.
    struct Quiet
    {
        Quiet() { testing::internal::CaptureStderr(); }
        ~Quiet() { testing::internal::GetCapturedStderr(); }
    };

    TempDir _dir;
    std::string _pipes = file("pipes");
    std::vector<std::string> _directories;
    std::vector<const char*> _candidates;
    std::string _savedPath;
    char _savedCwd[4096] = {};
};

} // namespace

// Only a known ending after at least one character (case matters) is read
// through a command; a name that does not exist stands for its ".gz"
// sibling, else its ".Z" one.
TEST_F(CompStream, DecidesByTheNameAndFindsCompressedSiblings)
{
    chdir(_dir.path().c_str());
    auto opened = [](const char* name)
    {
        KtCompIFStream in;
        in.open(name);
        return std::to_string(in.compressed()) + " " + readAll(in);
    };
    for (const char* name : {"x.GZ", ".gz", ".Z", "x.z", "x.jpg", "x.gz.txt"})
    {
        writeFile(name, "plain");
        EXPECT_EQ("0 plain", opened(name)) << name;
    }
    // compress exits 2 when the data did not shrink.
    run("printf Z | compress >walk.amc.Z; test -s walk.amc.Z");
    EXPECT_EQ("1 Z", opened("walk.amc"));
    run("printf gz | gzip >walk.amc.gz");
    EXPECT_EQ("1 gz", opened("walk.amc"));
    writeFile("walk.amc", "plain");
    EXPECT_EQ("0 plain", opened("walk.amc"));
}

// No name can reach a shell; a leading '-' cannot pass for an option.
TEST_F(CompStream, CommandsGetTheirFlagAndTheNameAsOneArgument)
{
    chdir(_dir.path().c_str());
    fakeTool("gunzip");
    fakeTool("djpeg");
    const std::string hostile =
        "a;b&c|d$(touch HACKED)`touch HACKED`*?'\"<> 1.gz";
    const std::pair<std::string, std::string> cases[] = {
        {hostile, "[-c][" + hostile + "]"},
        {"-dash.amc.gz", "[-c][./-dash.amc.gz]"},
        {"scan.jpeg", "[-gsi][scan.jpeg]"}};
    for (const auto& [name, arguments] : cases)
    {
        writeFile(name, "");
        KtCompIFStream in;
        in.open(name.c_str());
        EXPECT_EQ(arguments, readAll(in));
    }
    EXPECT_NE(0, access("HACKED", F_OK));
}

TEST_F(CompStream, ReportsACommandThatIsMissingOrCannotStart)
{
    std::string walk = compressed("walk.amc.gz", "gzip", "x");
    std::string noTool = "Cannot find command 'gunzip' to uncompress\n'" +
                         walk + "'.\nThis command needs to be in your path.";
    // Empty entries never stand for the current directory.
    fakeTool("gunzip", "exit 0");
    chdir(file("bin").c_str());
    for (const char* path : {"", "::", static_cast<const char*>(nullptr)})
    {
        path ? setenv("PATH", path, 1) : unsetenv("PATH");
        KtCompIFStream in;
        in.open(walk.c_str());
        EXPECT_TRUE(in.fail());
        EXPECT_EQ(errorBlock({noTool.c_str()}), printedChain());
    }

    fakeTool("gunzip");
    writeFile(file("bin/gunzip"), "not a program\n");
    KtCompIFStream in;
    in.open(walk.c_str());
    EXPECT_TRUE(in.fail());
    EXPECT_EQ(errorBlock({"Unable to decompress file.", "Exec format error"}),
              printedChain());
}

// Neither a command that fails nor a reader that stops early can hang.
TEST_F(CompStream, InputEndsEarlyWithoutHanging)
{
    Quiet quiet;
    std::string text = motionText(200000);
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
    KtCompIFStream first, second;
    first.open(file("whole.gz").c_str());
    second.open(file("whole.gz").c_str());
    std::string line;
    std::getline(first, line);
    EXPECT_EQ(":FULLY-SPECIFIED", line);
    first.close();
    // The destructor of the unread second stream stops its command too.
}

// Names planted where the pipe's name could be guessed (or left there by an
// older run) are neither used nor touched; a folder that cannot hold the
// private one is passed over for the next.
TEST_F(CompStream, PlantedNamesAndUnusableFoldersDoNotStopARead)
{
    std::string walk = compressed("walk.amc.gz", "gzip", "x");
    std::string planted = "/compifstream" +
                          std::to_string(KtCompIFStream().instance() + 1) +
                          "." + std::to_string(getpid());
    writeFile(file("notAFolder"), "");
    symlink(file("target").c_str(), (_pipes + planted).c_str());
    useCandidates({"/proc", file("notAFolder"), _pipes});
    KtCompIFStream in;
    in.open(walk.c_str());
    EXPECT_EQ("x", readAll(in)) << printedChain();
    EXPECT_NE(0, access(file("target").c_str(), F_OK));
    EXPECT_EQ(0, unlink((_pipes + planted).c_str()));

    useCandidates({file("missing")});
    KtCompIFStream none;
    none.open(walk.c_str());
    EXPECT_TRUE(none.fail());
    std::string message = "Unable to create named pipe \"" +
                          file("missing/compstream.XXXXXX/compifstream") +
                          std::to_string(none.instance()) + "." +
                          std::to_string(getpid()) + "\".";
    EXPECT_EQ(errorBlock({message.c_str(), "No such file or directory"}),
              printedChain());
}

// Reads killed at any moment of their first milliseconds, by either signal,
// leave nothing in the pipes' folder.
TEST_F(CompStream, KilledReadsLeaveNothingBehind)
{
    std::string walk = compressed("walk.amc.gz", "gzip", motionText(100));
    std::mt19937 random(17);
    for (int run = 0; run < 150; ++run)
    {
        pid_t child = fork();
        ASSERT_GE(child, 0);
        if (child == 0)
        {
            // A shell may start the test with these ignored, and the child
            // would then never die.
            signal(SIGINT, SIG_DFL);
            signal(SIGTERM, SIG_DFL);
            for (;;)
            {
                KtCompIFStream in;
                in.open(walk.c_str());
                readAll(in);
            }
        }
        usleep(random() % 12000);
        kill(child, run % 2 ? SIGTERM : SIGINT);
        int status = 0;
        ASSERT_EQ(child, waitpid(child, &status, 0));
        EXPECT_TRUE(WIFSIGNALED(status));
    }
    EXPECT_TRUE(filesIn(_pipes).empty());
}

// Reading compressed inputs runs end to end (the bundled example as .gz and
// .Z); here writing, through the system's gzip, then through a stand-in that
// ends before reading anything, so the writes meet a pipe without a reader.
TEST_F(CompStream, WritesThroughTheToolAndAFailedOneShowsWithoutSigpipe)
{
    const std::string text = motionText();
    KtCompOFStream out;
    out.open(file("out.gz").c_str());
    out << text;
    out.close();
    EXPECT_TRUE(out.good()) << printedChain();
    run("gzip -dc <" + file("out.gz") + " >" + file("back"));
    EXPECT_TRUE(readFile(file("back")) == text);

    fakeTool("gzip", "exit 3");
    Quiet quiet;
    sigset_t before, after;
    pthread_sigmask(SIG_SETMASK, nullptr, &before);
    KtCompOFStream failed;
    failed.open(file("out.gz").c_str());
    ASSERT_TRUE(failed.is_open());
    failed << text;
    failed.close();
    EXPECT_TRUE(failed.fail());
    pthread_sigmask(SIG_SETMASK, nullptr, &after);
    EXPECT_EQ(sigismember(&before, SIGPIPE), sigismember(&after, SIGPIPE));
    sigpending(&after);
    EXPECT_FALSE(sigismember(&after, SIGPIPE));
}
