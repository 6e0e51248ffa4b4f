// An engine with stand-ins for its tools, which record what they are asked; what the delegate is
// told and the alerts that are shown are noted.
#pragma once

#include "platform/base/bundle/Bundle.h"
#include "platform/base/seams/AlertPanel.h"
#include "platform/base/seams/MainQueue.h"
#include "shared/Library/Archiver/Archiver.h"
#include "tests/support/Files.h"
#include "tests/support/TestFolder.h"

#include <fstream>
#include <thread>

#include <gtest/gtest.h>

using namespace support;
using namespace std::chrono_literals;
namespace fs = std::filesystem;
using Lines = std::vector<std::string>;

// A bundle whose tools are all the stand-in.
inline Bundle standIns(const fs::path& bundle, const Lines& tools)
{
    const fs::path resources = bundle / "Contents/Resources";
    fs::create_directories(resources);
    for (const std::string& tool : tools)
        fs::create_symlink(PARCELO_TEST_STANDINS_DIR "/tool", resources / tool);
    return Bundle(bundle);
}

class EngineTest : public testing::Test
{
protected:
    EngineTest()
    {
        // One for the whole process, like the answer to where the zip tool is.
        static const TestFolder bundle;
        static const Bundle tools = standIns(bundle.path(), {"zip", "tar", "ditto"});
        Bundle::setMain(tools);
        setenv("TMPDIR", folder.path().c_str(), 1);
        for (const char* name : {"a/one", "b/two", "c/three"})
            writeFile(folder / name, name);
        fs::create_directories(folder / "scratch");
        fs::create_directories(folder / "out");
        MainQueue::setSubmitter(
            [this](std::chrono::nanoseconds delay, const MainQueue::Block& block) {
                EXPECT_EQ(delay, std::chrono::milliseconds(100));
                deferred.push_back(block);
            });
        AlertPanel::setPresenter([this](const AlertPanel::Alert& alert) {
            alerts.push_back(alert.title + ": " + alert.message + " [" + alert.defaultButton + "|"
                + alert.alternateButton + "|" + alert.otherButton + "]");
            return 1;
        });
        archiver->setDelegate(noting());
    }
    ~EngineTest() override
    {
        MainQueue::setSubmitter({});
        AlertPanel::setPresenter({});
        unsetenv("TMPDIR");
    }

    // What the stand-ins do besides recording, in shell; $4 is a zip's archive.
    void plan(const std::string& script) const { writeFile(folder / "plan", script + "\n"); }

    // A delegate that notes what it is told.
    ArchiverDelegate noting()
    {
        const auto number = [this](const char* word) {
            return [this, word](int value) { told.push_back(word + std::to_string(value)); };
        };
        return {.setNumberOfFiles = number("files "),
            .progressBy = number("progress "),
            .taskCompletedWithStatusCode = number("task "),
            .archiverCompletedWithStatus = number("completed ")};
    }

    Archiver::ArchiveFiles job(int type) const
    {
        return {.files = {folder / "a/one", folder / "b/two", folder / "c/three"},
            .name = "Demo",
            .type = type,
            .toFolder = folder / "out"};
    }

    // Runs a job; as soon as a tool has started, another thread does something, and does it again
    // until the job has ended if that gives true.
    std::optional<fs::path> archiveDuring(
        const Archiver::ArchiveFiles& request, const std::function<bool()>& action)
    {
        fs::remove(folder / "started");
        std::jthread other([&](const std::stop_token& ended) {
            EXPECT_TRUE(waitUntil([&] { return fs::exists(folder / "started"); }));
            while (action() && !waitUntil([&] { return ended.stop_requested(); }, 50ms)) { }
        });
        return archiver->archiveFiles(request);
    }

    // The alerts that are shown when the main thread comes to it, after the job.
    Lines shownAlerts()
    {
        EXPECT_EQ(alerts, Lines{}) << "shown too soon";
        for (const MainQueue::Block& block : deferred)
            block();
        deferred.clear();
        return std::exchange(alerts, {});
    }

    // A file of lines in the test's folder, with that folder as "@".
    Lines linesIn(const char* name) const
    {
        std::ifstream file(folder / name);
        const std::string& path = folder.path().native();
        Lines lines;
        for (std::string line; std::getline(file, line); lines.push_back(line))
            for (auto at = line.find(path); at != std::string::npos; at = line.find(path))
                line.replace(at, path.size(), "@");
        return lines;
    }
    Lines runs() const { return linesIn("record"); }

    const TestFolder folder;
    std::unique_ptr<Archiver> archiver = Archiver::initWithWorkingDirectory(folder / "scratch");
    Lines told;
    std::vector<MainQueue::Block> deferred;
    Lines alerts;
};
