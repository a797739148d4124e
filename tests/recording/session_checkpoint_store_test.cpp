#include "recording/session_checkpoint_store.hpp"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <iterator>
#include <limits>
#include <set>

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include "support/temporary_home.hpp"

namespace lumenote::recording {
namespace {

namespace fs = std::filesystem;
using Kind = SessionCheckpointLoadResult::Kind;

// 2025-11-16T08:00:00.250Z: quarantined files are named after its whole seconds.
const Date kNow = Date::fromMillisecondsSince1970(1763280000250.0);
const std::string kQuarantineName = "active-session-v1.corrupt-1763280000.json";

class FixedClock final : public WallClock {
  public:
    Date now() override { return kNow; }
};

// Writes part of the text, then fails as a full disk does.
class HalfThenFailingWrite final : public FileWriteOperations {
  public:
    long write(int descriptor, const char* data, std::size_t size) override {
        if (wrote_) {
            errno = ENOSPC;
            return -1;
        }
        wrote_ = true;
        return FileWriteOperations::write(descriptor, data, size / 2);
    }

  private:
    bool wrote_ = false;
};

ActiveSessionCheckpoint sampleCheckpoint() {
    const Date start = kNow.addingSeconds(-1800);
    ActiveSessionCheckpoint c;
    c.sessionID = *Uuid::parse("E621E1F8-C36C-495A-93FC-0C247A3E6E5F");
    c.startedAt = start;
    c.expectedEndAt = start.addingSeconds(3600);
    c.confirmedDuration = 1500.0;
    c.accumulatedPauseDuration = 120.0;
    c.lastConfirmedActivityAt = start.addingSeconds(1620);
    c.lastPersistedSegmentBoundaryAt = start.addingSeconds(1615);
    c.savedAt = start.addingSeconds(1625);
    c.calculationVersion = 3;
    return c;
}

using testing::modeOf;
using testing::namesIn;
using testing::readFile;

void writeFile(const fs::path& path, const std::string& bytes, mode_t mode = 0644) {
    testing::writeFile(path, bytes);
    ASSERT_EQ(::chmod(path.c_str(), mode), 0);
}

class SessionCheckpointStoreTest : public ::testing::Test {
  protected:
    void SetUp() override { fs::create_directory(root_); }

    testing::TemporaryHome home_;

    fs::path file() const { return root_ / "active-session-v1.json"; }
    FileSessionCheckpointStore store(
        FileWriteOperations& operations = systemFileWriteOperations()) {
        return FileSessionCheckpointStore(root_, clock_, operations);
    }

    FixedClock clock_;
    const fs::path temporary_ = home_.root();
    const fs::path root_ = temporary_ / "Lumenote";
};

// ---- loading ---------------------------------------------------------------

TEST_F(SessionCheckpointStoreTest, LoadReadsUpToTheByteLimitAndRefusesOneByteMore) {
    const std::string text = encodeCheckpoint(sampleCheckpoint());
    const auto padded = [&](std::size_t size) {
        // Spaces before the closing brace keep the object valid JSON.
        std::string bytes = text.substr(0, text.rfind('}'));
        bytes += std::string(size - bytes.size() - 1, ' ');
        return bytes + "}";
    };
    writeFile(file(), padded(32768));
    auto loaded = store().load();
    ASSERT_TRUE(loaded);
    EXPECT_EQ(*loaded, SessionCheckpointLoadResult::found(sampleCheckpoint()));

    const std::string oversized = padded(32769);
    writeFile(file(), oversized);
    loaded = store().load();
    ASSERT_FALSE(loaded);
    EXPECT_EQ(loaded.error(), SessionCheckpointStoreError::oversized);
    // Neither read nor moved aside: it may be a valid file of another kind.
    EXPECT_EQ(namesIn(root_), std::set<std::string>{"active-session-v1.json"});
    EXPECT_EQ(readFile(file()), oversized);
}

TEST_F(SessionCheckpointStoreTest, LoadRefusesLinksAndNonRegularFilesWithoutTouchingThem) {
    const fs::path target = temporary_ / "elsewhere.json";
    const std::string text = encodeCheckpoint(sampleCheckpoint());
    writeFile(target, text);
    fs::create_symlink(target, file());

    auto loaded = store().load();
    ASSERT_FALSE(loaded);
    EXPECT_EQ(loaded.error(), SessionCheckpointStoreError::invalidFile);
    EXPECT_TRUE(fs::is_symlink(fs::symlink_status(file())));
    EXPECT_EQ(namesIn(root_), std::set<std::string>{"active-session-v1.json"});

    // Removing takes the link away, never the file it points to.
    ASSERT_TRUE(store().remove());
    EXPECT_FALSE(fs::exists(fs::symlink_status(file())));
    EXPECT_EQ(readFile(target), text);
    EXPECT_EQ(modeOf(target), 0644u);

    fs::create_directory(file());
    loaded = store().load();
    ASSERT_FALSE(loaded);
    EXPECT_EQ(loaded.error(), SessionCheckpointStoreError::invalidFile);
    EXPECT_TRUE(fs::is_directory(file()));
}

TEST_F(SessionCheckpointStoreTest, LoadQuarantinesAnUndecodableOrInvalidCheckpointPrivately) {
    const auto withMember = [](const char* key, nlohmann::json value) {
        nlohmann::json document = nlohmann::json::parse(encodeCheckpoint(sampleCheckpoint()));
        document[key] = std::move(value);
        return document.dump();
    };
    const struct {
        const char* name;
        std::string text;
    } cases[] = {
        {"format version 2", withMember("formatVersion", 2)},
        {"negative confirmed duration", withMember("confirmedDuration", -1.5)},
        {"calculation version 4", withMember("calculationVersion", 4)},
        {"confirmed activity 5.001 s before the start",
         withMember("lastConfirmedActivityAt",
                    sampleCheckpoint().startedAt.millisecondsSince1970() - 5001)},
        {"unknown state", withMember("state", "running")},
        {"truncated", encodeCheckpoint(sampleCheckpoint()).substr(0, 40)},
        {"empty", ""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        writeFile(file(), c.text, 0644);

        const auto loaded = store().load();
        ASSERT_TRUE(loaded);
        EXPECT_EQ(loaded->kind, Kind::corruptQuarantined);
        EXPECT_EQ(namesIn(root_), std::set<std::string>{kQuarantineName});
        EXPECT_EQ(readFile(root_ / kQuarantineName), c.text);
        EXPECT_EQ(modeOf(root_ / kQuarantineName), 0600u);

        const auto again = store().load();
        ASSERT_TRUE(again);
        EXPECT_EQ(again->kind, Kind::missing);
        fs::remove(root_ / kQuarantineName);
    }
}

TEST_F(SessionCheckpointStoreTest, LoadAcceptsConfirmedActivityFiveSecondsBeforeTheStart) {
    nlohmann::json document = nlohmann::json::parse(encodeCheckpoint(sampleCheckpoint()));
    document["lastConfirmedActivityAt"] =
        sampleCheckpoint().startedAt.millisecondsSince1970() - 5000;
    writeFile(file(), document.dump());

    const auto loaded = store().load();
    ASSERT_TRUE(loaded);
    ASSERT_EQ(loaded->kind, Kind::checkpoint);
    EXPECT_EQ(loaded->checkpoint->lastConfirmedActivityAt,
              sampleCheckpoint().startedAt.addingSeconds(-5));
}

// ---- saving and removing ----------------------------------------------------

TEST_F(SessionCheckpointStoreTest, SaveWritesAPrivateFileThatLoadsBackWithAndWithoutTemplate) {
    // The data folder does not exist yet: saving creates it private.
    fs::remove(root_);
    ActiveSessionCheckpoint withTemplate = sampleCheckpoint();
    withTemplate.templateID = Uuid::generate();
    withTemplate.state = ActiveSessionCheckpointState::paused;

    for (const auto& checkpoint : {withTemplate, sampleCheckpoint()}) {
        ASSERT_TRUE(store().save(checkpoint));
        EXPECT_EQ(modeOf(root_), 0700u);
        EXPECT_EQ(modeOf(file()), 0600u);
        EXPECT_EQ(namesIn(root_), std::set<std::string>{"active-session-v1.json"});
        const auto loaded = store().load();
        ASSERT_TRUE(loaded);
        EXPECT_EQ(*loaded, SessionCheckpointLoadResult::found(checkpoint));
    }
}

TEST_F(SessionCheckpointStoreTest, SavedTextHasSortedKeysAndMillisecondDates) {
    ASSERT_TRUE(store().save(sampleCheckpoint()));
    const std::string text = readFile(file());
    const char* keys[] = {"accumulatedPauseDuration",
                          "calculationVersion",
                          "confirmedDuration",
                          "expectedEndAt",
                          "formatVersion",
                          "lastConfirmedActivityAt",
                          "lastPersistedSegmentBoundaryAt",
                          "savedAt",
                          "sessionID",
                          "startedAt",
                          "state"};
    std::size_t previous = 0;
    for (const char* key : keys) {
        SCOPED_TRACE(key);
        const std::size_t at = text.find("\"" + std::string(key) + "\":");
        ASSERT_NE(at, std::string::npos);
        EXPECT_GE(at, previous);
        previous = at;
    }
    // 30 minutes before 08:00:00.250Z.
    EXPECT_NE(text.find("\"startedAt\":1763278200250,"), std::string::npos) << text;
    EXPECT_NE(text.find("\"savedAt\":1763279825250,"), std::string::npos) << text;
}

TEST_F(SessionCheckpointStoreTest, AnInvalidCheckpointIsNeverWritten) {
    ASSERT_TRUE(store().save(sampleCheckpoint()));
    const std::string previous = readFile(file());

    constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    using Change = std::function<void(ActiveSessionCheckpoint&)>;
    const struct {
        const char* name;
        Change change;
    } cases[] = {
        {"NaN duration", [](auto& c) { c.confirmedDuration = kNaN; }},
        {"infinite pause", [](auto& c) { c.accumulatedPauseDuration = kInfinity; }},
        {"infinite date", [](auto& c) { c.savedAt = Date{kInfinity}; }},
        {"NaN date", [](auto& c) { c.expectedEndAt = Date{kNaN}; }},
        {"calculation version 4", [](auto& c) { c.calculationVersion = 4; }},
        {"saved before the start", [](auto& c) { c.savedAt = c.startedAt.addingSeconds(-6); }},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        ActiveSessionCheckpoint checkpoint = sampleCheckpoint();
        c.change(checkpoint);
        const auto saved = store().save(checkpoint);
        ASSERT_FALSE(saved);
        EXPECT_EQ(saved.error(), SessionCheckpointStoreError::invalidFile);
        EXPECT_EQ(readFile(file()), previous);
        EXPECT_EQ(namesIn(root_), std::set<std::string>{"active-session-v1.json"});
    }
}

TEST_F(SessionCheckpointStoreTest, ASaveFailingHalfwayLeavesThePreviousCheckpointWhole) {
    ASSERT_TRUE(store().save(sampleCheckpoint()));
    ActiveSessionCheckpoint later = sampleCheckpoint();
    later.confirmedDuration += 60;
    later.savedAt = later.savedAt.addingSeconds(60);

    HalfThenFailingWrite failing;
    const auto saved = store(failing).save(later);
    ASSERT_FALSE(saved);
    EXPECT_EQ(saved.error(), SessionCheckpointStoreError::writeFailed);

    EXPECT_EQ(namesIn(root_), std::set<std::string>{"active-session-v1.json"});
    const auto loaded = store().load();
    ASSERT_TRUE(loaded);
    EXPECT_EQ(*loaded, SessionCheckpointLoadResult::found(sampleCheckpoint()));
}

TEST_F(SessionCheckpointStoreTest, RemoveDeletesTheCheckpointAndSucceedsWhenThereIsNone) {
    ASSERT_TRUE(store().save(sampleCheckpoint()));
    ASSERT_TRUE(store().remove());
    EXPECT_TRUE(namesIn(root_).empty());
    EXPECT_TRUE(store().remove());
    EXPECT_EQ(store().load()->kind, Kind::missing);

    fs::remove(root_);
    EXPECT_TRUE(store().remove());
    EXPECT_EQ(store().load()->kind, Kind::missing);
}

// ---- in memory --------------------------------------------------------------

TEST(InMemorySessionCheckpointStoreTest, SwitchesAndCountersBehaveLikeTheFileStore) {
    InMemorySessionCheckpointStore memory;
    EXPECT_EQ(memory.load()->kind, Kind::missing);

    ASSERT_TRUE(memory.save(sampleCheckpoint()));
    EXPECT_EQ(*memory.load(), SessionCheckpointLoadResult::found(sampleCheckpoint()));

    ActiveSessionCheckpoint later = sampleCheckpoint();
    later.confirmedDuration += 30;
    memory.failWrites = true;
    auto saved = memory.save(later);
    ASSERT_FALSE(saved);
    EXPECT_EQ(saved.error(), SessionCheckpointStoreError::writeFailed);
    EXPECT_EQ(memory.checkpoint, sampleCheckpoint());
    memory.failWrites = false;

    ActiveSessionCheckpoint invalid = later;
    invalid.formatVersion = 2;
    saved = memory.save(invalid);
    ASSERT_FALSE(saved);
    EXPECT_EQ(saved.error(), SessionCheckpointStoreError::invalidFile);
    EXPECT_EQ(memory.saveCount, 3);

    memory.failRemoves = true;
    EXPECT_FALSE(memory.remove());
    EXPECT_TRUE(memory.checkpoint);
    memory.failRemoves = false;

    memory.returnsCorrupt = true;
    EXPECT_EQ(memory.load()->kind, Kind::corruptQuarantined);
    EXPECT_FALSE(memory.checkpoint);
    memory.returnsCorrupt = false;

    // A checkpoint set directly is validated on load like one read from disk.
    memory.checkpoint = invalid;
    EXPECT_EQ(memory.load()->kind, Kind::corruptQuarantined);
    EXPECT_EQ(memory.load()->kind, Kind::missing);

    EXPECT_TRUE(memory.remove());
    EXPECT_EQ(memory.removeCount, 2);
}

}  // namespace
}  // namespace lumenote::recording
