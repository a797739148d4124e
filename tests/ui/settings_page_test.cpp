// The Settings page under Qt's offscreen platform over a real store file and
// real backup files in a temporary home: a restore shows its validation
// report and replaces nothing until RESTORE is typed exactly; a reset and a
// delete-all wait for their own words; a control writes its preference, and
// a refused value (a key combination without modifier, a number out of
// range, an invalid template) shows the sentence of the part that refused it.
#include "ui/settings_page.hpp"

#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>

#include <gtest/gtest.h>

#include "ui/offscreen_application.hpp"

#include "bridge/browser_bridge_store.hpp"
#include "platform/fake/fake_platform.hpp"
#include "portability/automatic_backups.hpp"
#include "settings/file_session_template_repository.hpp"
#include "settings/in_memory_defaults_domain.hpp"
#include "settings/preference_keys.hpp"
#include "settings/preferences_store.hpp"
#include "settings/recording_preferences_adapter.hpp"
#include "store/sqlite_recording_store.hpp"
#include "store/store_files.hpp"
#include "support/temporary_home.hpp"
#include "ui/appearance.hpp"
#include "ui/design/qt_text.hpp"
#include "ui/models/receipt_options.hpp"
#include "ui/settings_about_section.hpp"
#include "ui/settings_browsers_section.hpp"
#include "ui/settings_data_section.hpp"
#include "ui/settings_general_section.hpp"
#include "ui/settings_rule_editor.hpp"
#include "ui/settings_template_editor.hpp"

namespace lumenote::ui {
namespace {

// 2026-09-21, a Monday morning in UTC.
const Date kNow = Date::fromUnixSeconds(1'790'000'000.0);

class SettingsPageTest : public ::testing::Test {
  protected:
    static void SetUpTestSuite() { lumenote::testing::ensureOffscreenApplication(); }

    void SetUp() override {
        auto opened = store::SqliteRecordingStore::open(store::storePath(home_.paths()));
        ASSERT_TRUE(opened.ok());
        store_ = std::move(*opened);
        for (int number = 1; number <= 3; ++number) {
            addSession(number, recording::StudySessionStatus::completed);
        }
        ASSERT_TRUE(store_
                        ->saveAppClassification({"org.gnome.TextEditor", "Text Editor", "focused",
                                                 kNow.addingSeconds(-86400.0)})
                        .ok());
        rules_ = std::make_unique<classification::ClassificationRules>(machine_.rulesFor(*store_));
        history_ = std::make_unique<recording::SessionHistory>(
            machine_.historyDependencies(*store_, *rules_, recordingPreferences_));
        // A Chromium and the native host helper, both in the temporary home.
        for (const char* program : {"chromium", "TallywiseBrowserHost"}) {
            lumenote::testing::writeFile(home_.root() / "bin" / program, "#!/bin/sh\n");
            std::filesystem::permissions(home_.root() / "bin" / program,
                                         std::filesystem::perms::owner_all);
        }
        const std::string home = home_.root().string();
        bridge::NativeHostConfiguration nativeHost =
            bridge::nativeHostConfiguration(home_.paths(), [&home](const char* name) {
                return std::string_view(name) == "HOME" ? home.c_str() : nullptr;
            });
        nativeHost.helperPath = home_.root() / "bin" / "TallywiseBrowserHost";
        page_ = std::make_unique<SettingsPage>(SettingsDependencies{
            .preferences = preferences_,
            .store = *store_,
            .historyReader = *store_,
            .importer = *store_,
            .history = *history_,
            .templates = templates_,
            .rules = *rules_,
            .wallClock = machine_.clock.wall(),
            .calendar = LocalCalendar::utc(),
            .paths = home_.paths(),
            .appVersion = "1.4.0",
            .appBuild = "12",
            .shortcutUnavailableSentence = [this] { return shortcutSentence_; },
            .checkDesktop =
                [] {
                    return runtime::SetupCheck{
                        "gap  Lumenote cannot see which application is in front.\n"
                        "ok   The time since your last input comes from GNOME's idle monitor.\n"
                        "gap  On GNOME, Lumenote sees the application in front through its "
                        "GNOME Shell extension, which is not running. Run \"lumenote-cli setup "
                        "wayland\" to install and enable it, then log out and back in.\n"
                        "ok   logind and the screen saver report sleep, locking and shutdown.",
                        false, platform::observation::WaylandSetupStep::installGnomeExtension};
                },
            .installGnomeExtension =
                [this] {
                    ++extensionInstalls_;
                    return runtime::GnomeExtensionSetup{
                        true, {"The GNOME Shell extension is installed and enabled."}};
                },
            .nativeHost = nativeHost,
            .browserStatus =
                [this](const bridge::NativeHostRegistrationChecker& checker) {
                    const bridge::BrowserBridgeStore bridgeFiles(home_.root() / "bridge");
                    const auto extensions = bridge::BrowserExtensionStatusService::readNow(
                        bridgeFiles, machine_.clock.wallNow());
                    return bridge::browserStatusRows({
                        .registration = checker,
                        .extensions = extensions,
                        .installations = {.executableFolders = {home_.root() / "bin"},
                                          .configHome = home_.paths().configHome},
                        .now = machine_.clock.wallNow(),
                    });
                },
            .extensionPackages = home_.root() / "extension",
            .setupTestInput = [] { return bridge::SetupTestInput{.appVersion = "1.4.0"}; },
        });
        page_->resize(960, 720);
        page_->show();
    }

    void addSession(int number, recording::StudySessionStatus status) {
        Uuid::Bytes bytes{};
        bytes[15] = static_cast<std::uint8_t>(number);
        const Date start = kNow.addingSeconds(-86400.0 * number);
        recording::StudySession session(Uuid(bytes), "Subject " + std::to_string(number), "", 0.0,
                                        start);
        session.timerDuration = 1500.0;
        if (status == recording::StudySessionStatus::completed) {
            session.endDate = start.addingSeconds(1500.0);
        }
        session.setStatus(status);
        recording::StoreChangeSet changes;
        changes.sessions.push_back(session);
        ASSERT_TRUE(store_->apply(changes).ok());
    }

    std::size_t sessions() { return *store_->sessionCount(); }

    template <typename T>
    T* child(const char* name) {
        T* found = page_->findChild<T*>(QLatin1String(name));
        EXPECT_NE(found, nullptr) << name;
        return found;
    }

    QString labelText(const char* name) { return child<QLabel>(name)->text(); }
    // Whether `name` shows when its section is the one on screen.
    bool shown(const char* name) {
        QWidget* widget = child<QWidget>(name);
        QWidget* section = widget;
        while (section != nullptr && !section->objectName().endsWith("Section")) {
            section = section->parentWidget();
        }
        return widget->isVisibleTo(section);
    }

    // Types `text` into the confirmation field `name` after emptying it.
    void typeInto(const char* name, const QString& text) {
        auto* field = child<QLineEdit>(name);
        field->clear();
        QTest::keyClicks(field, text);
    }

    // Presses `button` from the keyboard, as a person tabbing to it would:
    // a disabled button does nothing.
    static void press(QAbstractButton* button) {
        button->setFocus(Qt::TabFocusReason);
        QTest::keyClick(button, Qt::Key_Space);
    }

    std::filesystem::path backupPath() const { return home_.root() / "history.tallywisebackup"; }

    platform::fake::FakeMachine machine_{kNow};
    lumenote::testing::TemporaryHome home_;
    settings::InMemoryDefaultsDomain defaults_;
    settings::PreferencesStore preferences_{defaults_};
    settings::PreferencesForRecording recordingPreferences_{preferences_};
    std::unique_ptr<store::SqliteRecordingStore> store_;
    std::unique_ptr<classification::ClassificationRules> rules_;
    std::unique_ptr<recording::SessionHistory> history_;
    std::string shortcutSentence_;
    int extensionInstalls_ = 0;
    settings::FileSessionTemplateRepository templateFile_{
        settings::FileSessionTemplateRepository::pathFor(home_.paths()),
        [this] { return machine_.clock.wallNow(); }};
    settings::SessionTemplateStore templates_{templateFile_,
                                              [this] { return machine_.clock.wallNow(); }};
    std::unique_ptr<SettingsPage> page_;
};

TEST_F(SettingsPageTest, ReplaceRestoresOnlyOnceRestoreIsTypedExactly) {
    page_->showSection(SettingsPage::Section::data);
    ASSERT_TRUE(page_->data().backUpTo(backupPath()));
    EXPECT_TRUE(labelText("dataOutcome").startsWith("History backup created and verified"));
    addSession(4, recording::StudySessionStatus::completed);
    ASSERT_EQ(sessions(), 4u);
    ASSERT_TRUE(
        rules_
            ->saveApplicationClassification("org.gnome.TextEditor", "Text Editor",
                                            classification::ActivityClassification::distracting)
            .ok());

    ASSERT_TRUE(page_->data().previewRestore(backupPath()));
    EXPECT_TRUE(shown("restorePreview"));
    const QString report = labelText("restorePreviewLines");
    EXPECT_TRUE(report.contains("Made by Lumenote 1.4.0 on Monday 21 September 2026"))
        << report.toStdString();
    EXPECT_TRUE(
        report.contains("Sessions: 3\nActivity segments: 0\nClassification rules: 1\n"
                        "Supported preferences only"))
        << report.toStdString();

    QSignalSpy changed(page_.get(), &SettingsPage::historyChanged);
    auto* replace = child<QPushButton>("replaceButton");
    for (const QString& almost : {QStringLiteral("restore"), QStringLiteral("RESTOR"),
                                  QStringLiteral("RESTORE "), QStringLiteral(" RESTORE")}) {
        typeInto("replaceConfirmation", almost);
        EXPECT_FALSE(replace->isEnabled()) << almost.toStdString();
        QTest::keyClick(child<QLineEdit>("replaceConfirmation"), Qt::Key_Return);
        press(replace);
    }
    EXPECT_EQ(sessions(), 4u);
    EXPECT_EQ(changed.count(), 0);

    typeInto("replaceConfirmation", "RESTORE");
    ASSERT_TRUE(replace->isEnabled());
    press(replace);
    EXPECT_EQ(sessions(), 3u);
    EXPECT_EQ(changed.count(), 1);
    // The recorder classifies with the restored rule at once, and the
    // Classification section lists it.
    EXPECT_EQ(rules_->lookup().applicationClassification("org.gnome.TextEditor", "Text Editor"),
              classification::ActivityClassification::focused);
    EXPECT_EQ(child<QListWidget>("applicationRules")->item(0)->data(Qt::AccessibleTextRole),
              "Text Editor, org.gnome.TextEditor, Focused");
    EXPECT_TRUE(labelText("dataOutcome")
                    .startsWith("Restore complete: 3 sessions added, 0 duplicates skipped, 0 rule "
                                "conflicts preserved locally."));
    EXPECT_FALSE(shown("restorePreview"));
    EXPECT_FALSE(shown("dataBanner"));
    // The previous data was kept first, in the automatic backups.
    EXPECT_EQ(lumenote::testing::namesIn(portability::automaticBackupFolder(home_.paths())).size(),
              1u);
}

TEST_F(SettingsPageTest, MergeAddsWhatIsMissingAndSkipsTheRest) {
    ASSERT_TRUE(page_->data().backUpTo(backupPath()));
    Uuid::Bytes first{};
    first[15] = 1;
    ASSERT_TRUE(history_->deleteSessions({Uuid(first)}).ok());
    ASSERT_EQ(sessions(), 2u);

    ASSERT_TRUE(page_->data().previewRestore(backupPath()));
    press(child<QPushButton>("mergeButton"));
    EXPECT_EQ(sessions(), 3u);
    EXPECT_EQ(labelText("dataOutcome"),
              "Restore complete: 1 sessions added, 2 duplicates skipped, 0 rule conflicts "
              "preserved locally.");

    // Merging the same backup again adds nothing.
    ASSERT_TRUE(page_->data().previewRestore(backupPath()));
    press(child<QPushButton>("mergeButton"));
    EXPECT_EQ(sessions(), 3u);
    EXPECT_TRUE(
        labelText("dataOutcome").startsWith("Restore complete: 0 sessions added, 3 duplicates"));
}

TEST_F(SettingsPageTest, ABackupThatFailsValidationShowsWhyAndNoPreview) {
    ASSERT_TRUE(page_->data().backUpTo(backupPath()));
    ASSERT_TRUE(page_->data().previewRestore(backupPath()));
    ASSERT_TRUE(shown("restorePreview"));

    const std::filesystem::path broken = home_.root() / "broken.tallywisebackup";
    lumenote::testing::writeFile(broken, "{\"formatVersion\": 1, ");
    EXPECT_FALSE(page_->data().previewRestore(broken));
    EXPECT_FALSE(shown("restorePreview"));
    EXPECT_TRUE(shown("dataBanner"));
    EXPECT_TRUE(
        labelText("dataBanner")
            .startsWith("Restore validation failed: The backup contains an invalid record: "));

    const std::filesystem::path wrongName = home_.root() / "history.json";
    lumenote::testing::writeFile(wrongName, "{}");
    EXPECT_FALSE(page_->data().previewRestore(wrongName));
    EXPECT_EQ(labelText("dataBanner"),
              "Restore validation failed: Choose a .tallywisebackup file.");

    std::filesystem::create_directories(home_.root() / "folder.tallywisebackup");
    EXPECT_FALSE(page_->data().previewRestore(home_.root() / "folder.tallywisebackup"));
    EXPECT_EQ(labelText("dataBanner"),
              "Restore validation failed: The selected backup must be a regular file, not a "
              "folder or symbolic link.");
    EXPECT_EQ(sessions(), 3u);
}

TEST_F(SettingsPageTest, ResetWaitsForResetAndClearsHistoryRulesAndPreferences) {
    preferences_.setAppearance(settings::TallywiseAppearance::dark);
    preferences_.setInactivityThreshold(600.0);
    models::writeReceiptOptions(defaults_, {.includeGoal = false, .includeExactTimes = true});
    page_->showSection(SettingsPage::Section::data);

    auto* reset = child<QPushButton>("resetButton");
    for (const QString& almost :
         {QStringLiteral("reset"), QStringLiteral("RESE"), QStringLiteral("RESTORE")}) {
        typeInto("resetConfirmation", almost);
        EXPECT_FALSE(reset->isEnabled()) << almost.toStdString();
    }
    EXPECT_EQ(sessions(), 3u);
    typeInto("resetConfirmation", "RESET");
    QTest::keyClick(child<QLineEdit>("resetConfirmation"), Qt::Key_Return);

    EXPECT_EQ(sessions(), 0u);
    EXPECT_TRUE(store_->appClassifications()->empty());
    EXPECT_EQ(preferences_.appearance(), settings::TallywiseAppearance::system);
    EXPECT_EQ(preferences_.inactivityThreshold(), 90.0);
    EXPECT_EQ(models::readReceiptOptions(defaults_), models::ReceiptOptions{});
    EXPECT_TRUE(child<QLineEdit>("resetConfirmation")->text().isEmpty());
    EXPECT_FALSE(reset->isEnabled());
    // The General section follows the store.
    EXPECT_EQ(child<QComboBox>("appearance")->currentText(), "System");
}

TEST_F(SettingsPageTest, DeleteAllWaitsForItsWordAndKeepsRulesAndPreferences) {
    preferences_.setAppearance(settings::TallywiseAppearance::dark);
    auto* remove = child<QPushButton>("deleteAllButton");
    typeInto("deleteAllConfirmation", "delete");
    EXPECT_FALSE(remove->isEnabled());
    typeInto("deleteAllConfirmation", "DELETE");
    press(remove);
    EXPECT_EQ(sessions(), 0u);
    EXPECT_EQ(labelText("dataOutcome"), "3 sessions deleted.");
    EXPECT_EQ(store_->appClassifications()->size(), 1u);
    EXPECT_EQ(preferences_.appearance(), settings::TallywiseAppearance::dark);
}

TEST_F(SettingsPageTest, AnActiveSessionRefusesResetDeleteAllAndBackupWithTheirSentences) {
    addSession(9, recording::StudySessionStatus::running);
    preferences_.setAppearance(settings::TallywiseAppearance::dark);
    typeInto("resetConfirmation", "RESET");
    press(child<QPushButton>("resetButton"));
    EXPECT_EQ(labelText("dataBanner"), "End the active session before resetting Lumenote.");
    typeInto("deleteAllConfirmation", "DELETE");
    press(child<QPushButton>("deleteAllButton"));
    EXPECT_EQ(labelText("dataBanner"), "End the active session before deleting all sessions.");
    EXPECT_FALSE(page_->data().backUpTo(backupPath()));
    EXPECT_EQ(labelText("dataBanner"),
              "Finish the active session before creating or restoring a backup.");
    EXPECT_FALSE(std::filesystem::exists(backupPath()));
    EXPECT_EQ(sessions(), 4u);
    EXPECT_EQ(preferences_.appearance(), settings::TallywiseAppearance::dark);
}

TEST_F(SettingsPageTest, ExportWritesTheFileOrShowsWhyNot) {
    const portability::ExportRequest json{.format = portability::ExportFormat::json};
    EXPECT_TRUE(page_->data().exportTo(home_.root() / "all.json", json));
    EXPECT_EQ(labelText("dataOutcome"), "3 sessions exported.");
    EXPECT_NE(lumenote::testing::readFile(home_.root() / "all.json").find("Subject 2"),
              std::string::npos);
    EXPECT_FALSE(page_->data().exportTo(home_.root() / "missing" / "all.json", json));
    EXPECT_TRUE(shown("dataBanner"));
    EXPECT_FALSE(shown("dataOutcome"));
    EXPECT_FALSE(std::filesystem::exists(home_.root() / "missing"));
}

TEST_F(SettingsPageTest, GeneralControlsWriteTheirPreferences) {
    child<QComboBox>("appearance")->setCurrentIndex(2);
    EXPECT_EQ(preferences_.appearance(), settings::TallywiseAppearance::dark);
    auto* launch = child<QCheckBox>("launchAtLogin");
    launch->setFocus();
    QTest::keyClick(launch, Qt::Key_Space);
    EXPECT_TRUE(preferences_.launchAtLogin());
    EXPECT_EQ(settings::asBool(defaults_.object(settings::preference_keys::launchAtLogin)), true);
    child<QCheckBox>("startHidden")->click();
    EXPECT_TRUE(preferences_.startHidden());
    EXPECT_EQ(labelText("shortcutState"), "The global shortcut is off.");
    child<QCheckBox>("shortcutEnabled")->click();
    EXPECT_TRUE(preferences_.globalHotkeyEnabled());
    EXPECT_EQ(labelText("shortcutState"),
              "Shift+Super+S opens the Lumenote panel, or pauses and resumes a running session.");

    shortcutSentence_ = "A global shortcut needs at least one modifier key.";
    page_->shortcutStateChanged();
    EXPECT_EQ(labelText("shortcutState"), "A global shortcut needs at least one modifier key.");
}

TEST_F(SettingsPageTest, TheKeyRecorderStoresACombinationAndRefusesOneWithoutModifier) {
    auto* recorder = child<QPushButton>("shortcutRecorder");
    recorder->setFocus();
    QTest::keyClick(recorder, Qt::Key_Space);
    EXPECT_EQ(recorder->text(), "Press a key combination…");
    QTest::keyClick(recorder, Qt::Key_K, Qt::ControlModifier | Qt::AltModifier);
    EXPECT_EQ(preferences_.globalHotkey(), (settings::GlobalHotkeyBinding{0x28, 0x1800}));
    EXPECT_EQ(recorder->text(), "Ctrl+Alt+K");
    EXPECT_FALSE(shown("shortcutRefusal"));

    QTest::keyClick(recorder, Qt::Key_Space);
    QTest::keyClick(recorder, Qt::Key_K);
    EXPECT_EQ(preferences_.globalHotkey(), (settings::GlobalHotkeyBinding{0x28, 0x1800}));
    EXPECT_TRUE(shown("shortcutRefusal"));
    EXPECT_EQ(labelText("shortcutRefusal"), "A global shortcut needs at least one modifier key.");

    // Shift turns 1 into "!": the key is still 1. Escape alone cancels.
    QTest::keyClick(recorder, Qt::Key_Space);
    QTest::keyClick(recorder, Qt::Key_Exclam, Qt::ShiftModifier | Qt::ControlModifier);
    EXPECT_EQ(preferences_.globalHotkey(), (settings::GlobalHotkeyBinding{0x12, 0x1200}));
    EXPECT_FALSE(shown("shortcutRefusal"));
    QTest::keyClick(recorder, Qt::Key_Space);
    QTest::keyClick(recorder, Qt::Key_Escape);
    EXPECT_EQ(recorder->text(), "Ctrl+Shift+1");
    EXPECT_EQ(preferences_.globalHotkey(), (settings::GlobalHotkeyBinding{0x12, 0x1200}));
}

TEST_F(SettingsPageTest, ANumberOutOfRangeIsClampedByTheStoreAndSaysItsRange) {
    page_->showSection(SettingsPage::Section::tracking);
    auto* inactivity = child<QLineEdit>("inactivityField");
    EXPECT_EQ(inactivity->text(), "90");
    for (const auto& [typed, held, sentence] :
         {std::tuple{"600", 600.0, ""}, std::tuple{"30", 90.0, "Allowed range: 90–1800 seconds."},
          std::tuple{"2400", 1800.0, "Allowed range: 90–1800 seconds."},
          std::tuple{"1800", 1800.0, ""}, std::tuple{"soon", 1800.0, "Enter a number."}}) {
        inactivity->setFocus();
        inactivity->selectAll();
        QTest::keyClicks(inactivity, typed);
        QTest::keyClick(inactivity, Qt::Key_Return);
        EXPECT_EQ(preferences_.inactivityThreshold(), held) << typed;
        EXPECT_EQ(
            settings::asDouble(defaults_.object(settings::preference_keys::inactivityThreshold)),
            held)
            << typed;
        EXPECT_EQ(inactivity->text(), QString::number(held)) << typed;
        EXPECT_EQ(labelText("inactivitySentence"), QString::fromUtf8(sentence)) << typed;
        EXPECT_EQ(shown("inactivitySentence"), *sentence != 0) << typed;
    }

    // The default length is typed in minutes and stored in seconds.
    auto* length = child<QLineEdit>("defaultLengthField");
    EXPECT_EQ(length->text(), "25");
    length->selectAll();
    QTest::keyClicks(length, "50");
    QTest::keyClick(length, Qt::Key_Return);
    EXPECT_EQ(preferences_.defaultDuration(), 3000.0);
}

TEST_F(SettingsPageTest, SwitchesAndChoicesWriteTheirPreferences) {
    child<QComboBox>("longSleep")->setCurrentIndex(3);
    EXPECT_EQ(preferences_.longSleep(), settings::LongSleepPreference::never);
    child<QCheckBox>("browserTracking")->click();
    EXPECT_FALSE(preferences_.browserTrackingEnabled());
    EXPECT_FALSE(child<QCheckBox>("hostnameTracking")->isEnabled());
    child<QCheckBox>("notificationsEnabled")->click();
    EXPECT_TRUE(preferences_.notificationsEnabled());
    EXPECT_TRUE(child<QCheckBox>("notificationsIncludeSubject")->isEnabled());
    child<QCheckBox>("rememberGoal")->click();
    EXPECT_TRUE(preferences_.rememberLastGoal());
    child<QComboBox>("defaultStudyMode")->setCurrentIndex(2);
    EXPECT_EQ(preferences_.defaultStudyMode(), recording::StudySessionMode::offlineBookStudy);
    auto* subject = child<QLineEdit>("defaultSubject");
    QTest::keyClicks(subject, "  Organic chemistry ");
    QTest::keyClick(subject, Qt::Key_Return);
    EXPECT_EQ(preferences_.defaultSubject(), "Organic chemistry");
    // Each line of the desktop's check is marked: a gap with a warning sign.
    const QString observed = labelText("observationReport");
    EXPECT_TRUE(observed.contains(
        QStringLiteral("⚠ Lumenote cannot see which application is in front.<br>")))
        << observed.toStdString();
    EXPECT_TRUE(observed.contains(QStringLiteral("✓ The time since your last input")))
        << observed.toStdString();
    // GNOME without the extension: it can be installed from here too.
    auto* install = child<QPushButton>("observationInstallExtension");
    ASSERT_FALSE(install->isHidden());
    QTest::mouseClick(install, Qt::LeftButton);
    EXPECT_EQ(extensionInstalls_, 1);
    EXPECT_EQ(labelText("observationInstallResult"),
              "The GNOME Shell extension is installed and enabled.");
    EXPECT_TRUE(install->isHidden());
}

TEST_F(SettingsPageTest, TemplatesAreAddedEditedAndDeletedThroughTheStore) {
    auto* list = child<QListWidget>("templateList");
    EXPECT_EQ(list->count(), 0);
    EXPECT_FALSE(child<QPushButton>("templateEdit")->isEnabled());

    TemplateEditor adding(templates_, std::nullopt);
    adding.findChild<QLineEdit*>("templateName")->setText("Deep work");
    adding.findChild<QLineEdit*>("templateSubject")->setText("Chemistry");
    adding.findChild<QLineEdit*>("templateDuration")->setText("50");
    ASSERT_TRUE(adding.save());
    ASSERT_EQ(list->count(), 1);
    EXPECT_EQ(list->item(0)->data(Qt::AccessibleTextRole).toString().toStdString(),
              "Deep work, Chemistry · 50 min");
    EXPECT_TRUE(
        std::filesystem::exists(settings::FileSessionTemplateRepository::pathFor(home_.paths())));

    // The store refuses a second template of the same name, and a length of
    // over 12 hours; the editor stays open with the store's sentence.
    TemplateEditor again(templates_, std::nullopt);
    again.findChild<QLineEdit*>("templateName")->setText("DEEP WORK");
    again.findChild<QLineEdit*>("templateSubject")->setText("Physics");
    EXPECT_FALSE(again.save());
    auto* refusal = again.findChild<QLabel*>("templateRefusal");
    EXPECT_EQ(refusal->text(),
              "Choose a distinct template name so it is clear which template you are using.");
    again.findChild<QLineEdit*>("templateName")->setText("Long haul");
    again.findChild<QLineEdit*>("templateDuration")->setText("721");
    EXPECT_FALSE(again.save());
    EXPECT_EQ(refusal->text(), "Choose a duration from 1 minute to 12 hours.");
    again.findChild<QLineEdit*>("templateDuration")->setText("ten");
    EXPECT_FALSE(again.save());
    EXPECT_EQ(refusal->text(), "Enter the duration in minutes.");
    EXPECT_EQ(templates_.templates().size(), 1u);

    TemplateEditor editing(templates_, templates_.templates().front());
    EXPECT_EQ(editing.findChild<QLineEdit*>("templateDuration")->text(), "50");
    editing.findChild<QCheckBox*>("templateHasBreak")->click();
    editing.findChild<QCheckBox*>("templateOpenEnded")->click();
    ASSERT_TRUE(editing.save());
    EXPECT_EQ(list->item(0)->data(Qt::AccessibleTextRole).toString().toStdString(),
              "Deep work, Chemistry · open end, break 5 min");

    list->setCurrentRow(0);
    press(child<QPushButton>("templateDelete"));
    EXPECT_EQ(list->count(), 0);
    EXPECT_TRUE(templates_.templates().empty());
}

TEST_F(SettingsPageTest, RulesAreAddedChangedAndRemovedThroughTheClassificationRules) {
    auto* applications = child<QListWidget>("applicationRules");
    auto* websites = child<QListWidget>("websiteRules");
    ASSERT_EQ(applications->count(), 1);
    EXPECT_EQ(applications->item(0)->data(Qt::AccessibleTextRole).toString(),
              "Text Editor, org.gnome.TextEditor, Focused");
    EXPECT_EQ(websites->count(), 0);
    EXPECT_TRUE(shown("websiteRulesEmpty"));
    EXPECT_GT(child<QListWidget>("starterSuggestions")->count(), 50);

    RuleEditor website(*rules_, RuleEditor::Kind::website, std::nullopt);
    auto* hostname = website.findChild<QLineEdit*>("ruleKey");
    hostname->setText("  ");
    EXPECT_FALSE(website.save());
    EXPECT_FALSE(website.findChild<QLabel*>("ruleRefusal")->text().isEmpty());
    hostname->setText("Study.Example.ORG");
    website.findChild<QComboBox*>("ruleClassification")->setCurrentIndex(1);
    ASSERT_TRUE(website.save());
    ASSERT_EQ(websites->count(), 1);
    EXPECT_FALSE(shown("websiteRulesEmpty"));
    EXPECT_EQ(rules_->lookup().websiteClassification("study.example.org", std::nullopt),
              classification::ActivityClassification::distracting);

    RuleEditor nameless(*rules_, RuleEditor::Kind::application, std::nullopt);
    EXPECT_FALSE(nameless.save());
    EXPECT_EQ(nameless.findChild<QLabel*>("ruleRefusal")->text(),
              "Enter the application's identifier, such as org.gnome.TextEditor.");

    // Changing keeps the identifier and takes the new class.
    applications->setCurrentRow(0);
    RuleEditor change(*rules_, RuleEditor::Kind::application,
                      models::applicationRuleRows(*store_->appClassifications()).front());
    EXPECT_TRUE(change.findChild<QLineEdit*>("ruleKey")->isReadOnly());
    change.findChild<QComboBox*>("ruleClassification")->setCurrentIndex(3);
    ASSERT_TRUE(change.save());
    EXPECT_EQ(store_->appClassifications()->front().classification(),
              classification::ActivityClassification::ignored);

    applications->setCurrentRow(0);
    press(child<QPushButton>("applicationRulesRemove"));
    EXPECT_EQ(applications->count(), 0);
    EXPECT_TRUE(store_->appClassifications()->empty());
}

TEST_F(SettingsPageTest, ABrowserIsRegisteredAndRemovedFromItsCard) {
    page_->showSection(SettingsPage::Section::browsers);
    const auto texts = [&] {
        QStringList shown;
        for (QLabel* label : child<QWidget>("chromiumCard")->findChildren<QLabel*>()) {
            shown.append(label->text());
        }
        return shown;
    };
    EXPECT_TRUE(texts().contains("Not registered"));
    EXPECT_TRUE(texts().contains("None yet"));
    EXPECT_EQ(page_->findChild<QPushButton*>("chromiumRemove"), nullptr);
    EXPECT_TRUE(labelText("browsersNotInstalled").startsWith("Not installed: Google Chrome"));
    EXPECT_FALSE(labelText("browsersNotInstalled").contains("Chromium"));

    press(child<QPushButton>("chromiumRegister"));
    EXPECT_EQ(labelText("browsersOutcome"),
              "Chromium: " + qt(bridge::kRegistrationRepairedMessage));
    const std::filesystem::path manifest = home_.paths().configHome / "chromium" /
                                           "NativeMessagingHosts" /
                                           "com.tallywise.browser_host.json";
    EXPECT_TRUE(std::filesystem::exists(manifest));
    EXPECT_TRUE(texts().contains("Registered"));
    EXPECT_EQ(page_->findChild<QPushButton*>("chromiumRegister"), nullptr);

    press(child<QPushButton>("chromiumRemove"));
    EXPECT_FALSE(std::filesystem::exists(manifest));
    EXPECT_TRUE(texts().contains("Not registered"));
}

TEST_F(SettingsPageTest, TheSetupTestShowsItsItemsAndCopiesItsReport) {
    EXPECT_FALSE(child<QPushButton>("setupTestCopy")->isEnabled());
    press(child<QPushButton>("setupTestRun"));
    EXPECT_TRUE(shown("setupTestItems"));
    EXPECT_FALSE(labelText("setupTestItems").isEmpty());
    const QString report = child<QPlainTextEdit>("setupTestReport")->toPlainText();
    EXPECT_FALSE(report.isEmpty());
    press(child<QPushButton>("setupTestCopy"));
    EXPECT_EQ(QApplication::clipboard()->text(), report);
    EXPECT_EQ(labelText("browsersOutcome"), "Diagnostic report copied");
}

TEST_F(SettingsPageTest, AboutShowsTheVersionAndAReportWithoutRecordedDetails) {
    page_->showSection(SettingsPage::Section::about);
    EXPECT_EQ(labelText("aboutVersion"), "Version 1.4.0 (build 12)");
    EXPECT_FALSE(child<QPushButton>("reportCopy")->isEnabled());
    press(child<QPushButton>("reportShow"));
    auto* report = child<QPlainTextEdit>("reportText");
    ASSERT_TRUE(shown("reportText"));
    const QString text = report->toPlainText();
    EXPECT_TRUE(text.startsWith("Lumenote Diagnostic Report\n")) << text.toStdString();
    EXPECT_TRUE(text.contains("- Version: 1.4.0\n- Build: 12\n")) << text.toStdString();
    EXPECT_TRUE(text.contains("- Sessions: 3\n")) << text.toStdString();
    EXPECT_TRUE(text.contains("- Application rules: 1\n")) << text.toStdString();
    for (const char* recorded : {"Subject 1", "Text Editor", "org.gnome.TextEditor"}) {
        EXPECT_FALSE(text.contains(recorded)) << recorded;
    }

    press(child<QPushButton>("reportCopy"));
    EXPECT_EQ(QApplication::clipboard()->text(), text);
    ASSERT_TRUE(page_->about().saveReportTo(home_.root() / "report.txt"));
    EXPECT_EQ(QString::fromStdString(lumenote::testing::readFile(home_.root() / "report.txt")),
              text);
    EXPECT_FALSE(page_->about().saveReportTo(home_.root() / "missing" / "report.txt"));
    EXPECT_TRUE(shown("aboutBanner"));
}

#if LUMENOTE_UPDATE_CHECKS
TEST_F(SettingsPageTest, AboutAllowsUpdateChecksOnlyWhenTickedAndShowsTheAddress) {
    page_->showSection(SettingsPage::Section::about);
    auto* allow = child<QCheckBox>("updatesCheckEnabled");
    EXPECT_FALSE(allow->isChecked());
    allow->click();
    EXPECT_TRUE(preferences_.updatesCheckEnabled());

    preferences_.setUpdatesFeedAddress("https://fork.example/feed.json");
    EXPECT_EQ(labelText("updatesFeedAddress"), "Update address: https://fork.example/feed.json");
    preferences_.setUpdatesCheckEnabled(false);
    EXPECT_FALSE(allow->isChecked());
}

#endif
// Every control of every section can be reached with Tab and says what it is.
TEST_F(SettingsPageTest, EveryControlIsKeyboardReachableWithAName) {
    int controls = 0;
    for (QWidget* widget : page_->findChildren<QWidget*>()) {
        const bool control = qobject_cast<QAbstractButton*>(widget) ||
                             qobject_cast<QLineEdit*>(widget) || qobject_cast<QComboBox*>(widget) ||
                             qobject_cast<QListWidget*>(widget) ||
                             qobject_cast<QPlainTextEdit*>(widget);
        if (!control || widget->parentWidget()->inherits("QComboBox") ||
            widget->inherits("QScrollBar")) {
            continue;
        }
        ++controls;
        EXPECT_TRUE(widget->focusPolicy() & Qt::TabFocus) << widget->objectName().toStdString();
        EXPECT_FALSE(widget->accessibleName().isEmpty()) << widget->objectName().toStdString();
    }
    EXPECT_GT(controls, 40);
}

// With LUMENOTE_SCREENSHOT_DIR set, each section is written there in light
// and dark for a person to look at.
TEST_F(SettingsPageTest, PaintsEverySectionInLightAndDark) {
    const char* folder = std::getenv("LUMENOTE_SCREENSHOT_DIR");
    ASSERT_TRUE(page_->data().backUpTo(backupPath()));
    ASSERT_TRUE(page_->data().previewRestore(backupPath()));
    page_->about().showReport();
    page_->browsers().runSetupTest();
    // The General section with the shortcut on and a refused combination.
    preferences_.setGlobalHotkeyEnabled(true);
    auto* recorder = child<QPushButton>("shortcutRecorder");
    QTest::keyClick(recorder, Qt::Key_Space);
    QTest::keyClick(recorder, Qt::Key_K);
    for (const auto& [name, subject, minutes] : {std::tuple{"Deep work", "Organic chemistry", 50.0},
                                                 std::tuple{"Vocabulary", "Spanish", 15.0}}) {
        ASSERT_TRUE(
            templates_.create({.name = name, .subject = subject, .duration = minutes * 60}).ok());
    }
    AppearanceController appearance;
    for (const auto& [mode, name] : {std::pair{settings::TallywiseAppearance::light, "light"},
                                     std::pair{settings::TallywiseAppearance::dark, "dark"}}) {
        appearance.apply(mode);
        for (const auto& [section, sectionName] :
             {std::pair{SettingsPage::Section::general, "general"},
              std::pair{SettingsPage::Section::sessions, "sessions"},
              std::pair{SettingsPage::Section::tracking, "tracking"},
              std::pair{SettingsPage::Section::classification, "classification"},
              std::pair{SettingsPage::Section::browsers, "browsers"},
              std::pair{SettingsPage::Section::notifications, "notifications"},
              std::pair{SettingsPage::Section::data, "data"},
              std::pair{SettingsPage::Section::about, "about"}}) {
            page_->showSection(section);
            QApplication::processEvents();
            const QImage image = page_->grab().toImage();
            EXPECT_EQ(image.size(), page_->size() * image.devicePixelRatio());
            if (folder != nullptr) {
                QDir().mkpath(folder);
                const QString stem = QStringLiteral("settings-%1-%2")
                                         .arg(QLatin1String(sectionName), QLatin1String(name));
                EXPECT_TRUE(image.save(QDir(folder).filePath(stem + ".png")));
                // The whole section, below the fold too.
                QWidget* whole = page_->findChild<QWidget*>(QLatin1String(sectionName) + "Section");
                EXPECT_TRUE(whole->grab().save(QDir(folder).filePath(stem + "-whole.png")));
            }
        }
    }
    appearance.apply(settings::TallywiseAppearance::light);
}

// The template editor with a refusal, light and dark, for a person to look at.
TEST_F(SettingsPageTest, PaintsTheTemplateEditorWithARefusal) {
    const char* folder = std::getenv("LUMENOTE_SCREENSHOT_DIR");
    ASSERT_TRUE(
        templates_.create({.name = "Deep work", .subject = "Chemistry", .duration = 3000}).ok());
    TemplateEditor editor(templates_, std::nullopt);
    editor.findChild<QLineEdit*>("templateName")->setText("Deep work");
    editor.findChild<QLineEdit*>("templateSubject")->setText("Physics");
    EXPECT_FALSE(editor.save());
    editor.resize(460, editor.sizeHint().height());
    editor.show();
    AppearanceController appearance;
    for (const auto& [mode, name] : {std::pair{settings::TallywiseAppearance::light, "light"},
                                     std::pair{settings::TallywiseAppearance::dark, "dark"}}) {
        appearance.apply(mode);
        QApplication::processEvents();
        const QImage image = editor.grab().toImage();
        EXPECT_FALSE(image.isNull());
        if (folder != nullptr) {
            QDir().mkpath(folder);
            EXPECT_TRUE(image.save(QDir(folder).filePath(
                QStringLiteral("settings-template-editor-%1.png").arg(name))));
        }
    }
    appearance.apply(settings::TallywiseAppearance::light);
}

}  // namespace
}  // namespace lumenote::ui
