// motexport's page in a real browser: headless chromium opens the bundled
// example, exported under names that hold markup, and the page reports what
// it drew in its status element.
#include <algorithm>
#include <iterator>
#include <sstream>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

#include <gtest/gtest.h>

#include "e2e/e2e_runner.h"
#include "support/test_helpers.h"

namespace
{

constexpr const char* kChromium = "/usr/bin/chromium";

// The offsets' 16-bit step (under 1e-3 of the example's unit), the CSV's six
// digits and the status's four decimals.
constexpr double kPlaceTolerance = 2e-3;

// What an ASF name may hold: no blank, '<' or '>'. File names may hold
// anything, "</script>" across two folders.
const std::string kSkeletonName = "&amp;\"'\xE9";
const std::string kFolder = "<b>&amp;'\"\xE9";
// A byte that is not UTF-8, as a browser writes it out.
const std::string kNotUtf8 = "\xEF\xBF\xBD";

// The value on the "key value" line of the page's status.
std::string statusValue(const std::string& document, const std::string& key)
{
    const std::string open = "<pre id=\"status\" hidden=\"\">";
    const size_t begin = document.find(open);
    if (begin == std::string::npos)
        return "(no status)";
    const size_t from = begin + open.size();
    std::istringstream lines(
        document.substr(from, document.find("</pre>", from) - from));
    for (std::string line; std::getline(lines, line);)
        if ((line + " ").compare(0, key.size() + 1, key + " ") == 0)
            return line.substr(std::min(key.size() + 1, line.size()));
    return "(none)";
}

std::vector<double> numbersIn(std::string text, char separator)
{
    std::replace(text.begin(), text.end(), separator, ' ');
    std::istringstream in(text);
    return {std::istream_iterator<double>(in), std::istream_iterator<double>()};
}

} // namespace

// Frames 1 and 11 of the walk: drawn without a script error, each joint
// where the CSV puts it, and differently; every name as text, nothing of it
// as markup.
TEST(MotexportViewer, DrawsEachFrameInABrowserWithNamesAsText)
{
    if (access(kChromium, X_OK) != 0)
        GTEST_SKIP() << kChromium << " is not installed (make test installs "
                     << "it): the page is not tried in a browser.";
    TempDir dir;
    const std::string folder = dir.file(kFolder);
    for (const std::string& path :
         {folder, folder + "/<", folder + "/</script>"})
        ASSERT_EQ(0, mkdir(path.c_str(), 0777)) << path;
    const std::string asf = folder + "/</script>/human.asf";
    const std::string amc = folder + "/</script>/walk.amc";
    std::string skeleton = readFile(EXAMPLES_DIR "/human.asf");
    const std::string name = ":name example_human";
    skeleton.replace(
        skeleton.find(name), name.size(), ":name " + kSkeletonName);
    writeFile(asf, skeleton);
    writeFile(amc, readFile(EXAMPLES_DIR "/walk.amc"));
    const std::string page = dir.file("walk.html");
    const std::string csv = dir.file("walk.csv");
    RunResult run =
        runProgram(MOTEXPORT_BIN, {"-f", asf, amc, "30", page, csv});
    ASSERT_EQ(0, run.status) << run.err;
    std::vector<std::string> rows;
    std::istringstream csvLines(readFile(csv));
    for (std::string line; std::getline(csvLines, line);)
        rows.push_back(line);

    // Markup characters as references, the Latin-1 byte replaced.
    const std::string shownFolder =
        dir.path() + "/&lt;b&gt;&amp;amp;'\"" + kNotUtf8 + "/&lt;/script&gt;/";
    std::string hashes[2];
    const int frames[] = {1, 11};
    for (int i = 0; i < 2; ++i)
    {
        SCOPED_TRACE(frames[i]);
        // The document as chromium has it once the page has run.
        const std::string address =
            "file://" + page + "#frame=" + std::to_string(frames[i]);
        const std::string document =
            runProgram(HEADLESS_CHROMIUM,
                       {"--virtual-time-budget=5000", "--dump-dom", address})
                .out;
        EXPECT_EQ("ready", statusValue(document, "state"));
        EXPECT_EQ("", statusValue(document, "error"));
        EXPECT_EQ("240", statusValue(document, "frames"));
        EXPECT_EQ(std::to_string(frames[i]), statusValue(document, "frame"));
        hashes[i] = statusValue(document, "hash");

        // The CSV's row: frame, time, then the same points in the same order.
        const std::vector<double> row = numbersIn(rows[frames[i]], ',');
        const std::vector<double> drawn =
            numbersIn(statusValue(document, "points"), ',');
        ASSERT_EQ(row.size(), drawn.size() + 2);
        for (size_t v = 0; v < drawn.size(); ++v)
            EXPECT_NEAR(row[v + 2], drawn[v], kPlaceTolerance) << v;

        for (const auto& [id, text] :
             {std::pair{"skeleton-name", "&amp;amp;\"'" + kNotUtf8},
              std::pair{"skeleton-file", shownFolder + "human.asf"},
              std::pair{"motion-file", shownFolder + "walk.amc"}})
        {
            const std::string shown = std::string("id=\"") + id + "\"";
            const size_t at = document.find(shown);
            ASSERT_NE(std::string::npos, at) << id;
            const size_t begin = document.find('>', at) + 1;
            EXPECT_EQ(
                text,
                document.substr(begin, document.find('<', begin) - begin));
        }
        EXPECT_EQ(std::string::npos, document.find("<b>"));
    }
    EXPECT_NE(hashes[0], hashes[1]);
}
