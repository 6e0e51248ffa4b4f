// An engine with stand-ins for its tools, which record what they are asked; what the delegate is
// told and the alerts that are shown are noted.
#pragma once

#include "platform/base/bundle/Bundle.h"
#include "platform/base/seams/AlertPanel.h"
#include "platform/base/seams/MainQueue.h"
#include "shared/Library/Archiver/Archiver.h"
#include "tests/support/Test.h"

class EngineTest : public testing::Test
{
protected:
    EngineTest()
    {
        Bundle::setMain(Bundle(PARCELO_TEST_STANDINS_DIR));
        for (const char* name : {"a/one", "b/two"})
            writeFile(folder / name, name);
        for (const char* name : {"scratch", "out"})
            fs::create_directory(folder / name);
        MainQueue::setSubmitter([this](std::chrono::nanoseconds delay, MainQueue::Block block) {
            EXPECT_EQ(delay, 100ms);
            deferred.push_back(std::move(block));
        });
        AlertPanel::setPresenter([this](const AlertPanel::Alert& alert) {
            alerts.push_back(
                alert.title + ": " + AlertPanel::text(alert) + " [" + alert.defaultButton + "]");
            return 1;
        });
        renew();
    }
    ~EngineTest() override { MainQueue::setSubmitter({}); }

    // What the stand-ins do besides recording, in shell; $4 is a zip's archive, $5 its item.
    void plan(const std::string& script) const { writeFile(folder / "plan", script + "\n"); }

    // An engine that knows nothing of earlier jobs, and a delegate that notes what it is told.
    void renew()
    {
        const auto number = [this](const char* word) {
            return [this, word](int value) { told.push_back(word + std::to_string(value)); };
        };
        archiver = Archiver::initWithWorkingDirectory(folder / "scratch");
        archiver->setDelegate(ArchiverDelegate{.setNumberOfFiles = number("files "),
            .taskCompletedWithStatusCode = number("task "),
            .archiverCompletedWithStatus = number("completed "),
            .notStaged = [this](const fs::path& item, std::error_code) {
                told.push_back("without " + item.native());
            }});
        told.clear();
        fs::remove(folder / "record");
    }

    Archiver::ArchiveFiles job(int type) const
    {
        return {.files = {folder / "a/one", folder / "b/two"},
            .name = "Demo",
            .type = type,
            .toFolder = folder / "out"};
    }

    // Runs a job that another thread ends as soon as a tool has started.
    std::optional<fs::path> archiveAndEnd(const Archiver::ArchiveFiles& request, bool isAbandoned)
    {
        fs::remove(folder / "started");
        std::jthread other([&](const std::stop_token& ended) {
            EXPECT_TRUE(waitUntil([&] { return fs::exists(folder / "started"); }));
            if (!isAbandoned)
                archiver->cancel();
            while (isAbandoned && !waitUntil([&] { return ended.stop_requested(); }, 50ms))
                archiver->abandon();
        });
        return archiver->archiveFiles(request);
    }

    // The alerts that are shown when the main thread comes to it, after the job.
    Lines shownAlerts()
    {
        EXPECT_EQ(alerts, Lines{}) << "shown too soon";
        for (const MainQueue::Block& block : std::exchange(deferred, {}))
            block();
        return std::exchange(alerts, {});
    }

    // A file of lines in the test's folder, with that folder as "@".
    Lines linesIn(const char* name) const
    {
        return linesOf(run({"sed", "s," + folder.path().native() + ",@,g", folder / name}).out);
    }

    const TestFolder folder;
    const EnvironmentVariable temporary{"TMPDIR", folder.path()};
    std::unique_ptr<Archiver> archiver;
    Lines told;
    std::vector<MainQueue::Block> deferred;
    Lines alerts;
};
