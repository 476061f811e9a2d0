#include "SettingsScene.h"

namespace skylet::test {
namespace {

constexpr const char* prompt = "Premi la scorciatoia…";
constexpr const char* needsModifier = "Tieni premuto ⌘, ⌃ o ⌥, oppure premi un tasto F";
constexpr const char* taken = "Questa scorciatoia è già usata da un’altra app.";

class ShortcutRecorderRowTest : public SettingsScene {
  protected:
    void startRecording() {
        QAbstractButton* change = buttonWith(open(), "Modifica…");
        ASSERT_NE(change, nullptr);
        change->setFocus();
        type(window(), Qt::Key_Space);
        ASSERT_TRUE(shows(prompt));
        ASSERT_FALSE(desktop.eventTap.enabled);
    }
    [[nodiscard]] QWidget& window() { return *settings.widget(); }
    // Presses a key alone or with Control.
    void press(int key, quint32 code, quint32 flags = 0) {
        type(window(), key, flags == 0 ? Qt::NoModifier : Qt::ControlModifier, code, flags);
    }
};

TEST_F(ShortcutRecorderRowTest, KeysThatWindowsUseAreRecordedInstead) {
    const std::pair<int, quint32> cases[] = {{Qt::Key_Tab, 48}, {Qt::Key_Return, 36}, {Qt::Key_Space, 49},
                                             {Qt::Key_W, 13},   {Qt::Key_Down, 125},  {Qt::Key_Period, 47}};
    for (const auto& [key, code] : cases) {
        startRecording();
        press(key, code, control);
        EXPECT_EQ(keyCode, code);
        EXPECT_EQ(modifiers, control);
        EXPECT_TRUE(window().isVisible());
        EXPECT_FALSE(shows(prompt));
        EXPECT_TRUE(desktop.eventTap.enabled);
    }
    EXPECT_EQ(saves, 6);
}

TEST_F(ShortcutRecorderRowTest, ARefusedKeyChangesTheHint) {
    startRecording();
    type(window(), Qt::Key_P, Qt::ShiftModifier, 35, shift);
    EXPECT_TRUE(shows(needsModifier));
    EXPECT_FALSE(shows(prompt));
    press(Qt::Key_Tab, 48);
    EXPECT_TRUE(shows(needsModifier));
    EXPECT_EQ(window().focusWidget(), buttonWith(window(), "Annulla"));
    press(Qt::Key_F5, 96);
    EXPECT_EQ(keyCode, 96);
    EXPECT_EQ(modifiers, 0U);
    EXPECT_EQ(saves, 1);
    startRecording(); // the first hint is back
}

TEST_F(ShortcutRecorderRowTest, ModifiersAndRepeatedKeysAreNoKeyDowns) {
    startRecording();
    type(window(), Qt::Key_Control, Qt::ControlModifier, 0);
    QKeyEvent repeated(QEvent::KeyPress, Qt::Key_Space, Qt::NoModifier, 49, 0, 0, QString(), true);
    QApplication::sendEvent(&window(), &repeated);
    EXPECT_TRUE(shows(prompt));
    EXPECT_EQ(saves, 0);
}

TEST_F(ShortcutRecorderRowTest, EscapeCancelsOnlyTheRecording) {
    startRecording();
    press(Qt::Key_Escape, 53);
    EXPECT_TRUE(window().isVisible());
    EXPECT_FALSE(shows(prompt));
    EXPECT_EQ(keyCode, 35);
    EXPECT_EQ(saves, 0);
    EXPECT_EQ(window().focusWidget(), buttonWith(window(), "Modifica…"));
    press(Qt::Key_Escape, 53);
    EXPECT_FALSE(window().isVisible());
}

TEST_F(ShortcutRecorderRowTest, CancelButtonAndClosingRestoreTheTap) {
    startRecording();
    buttonWith(window(), "Annulla")->click();
    EXPECT_TRUE(desktop.eventTap.enabled);
    startRecording();
    window().close();
    EXPECT_TRUE(desktop.eventTap.enabled);
    open();
    EXPECT_FALSE(shows(prompt));
    press(Qt::Key_P, 40, control);
    EXPECT_EQ(keyCode, 35) << "recorded after all";
}

TEST_F(ShortcutRecorderRowTest, AShortcutOfAnotherProgramIsSaid) {
    desktop.eventTap.keyIsFree = false;
    startRecording();
    EXPECT_FALSE(shows(taken)) << "not while another one is being recorded";
    press(Qt::Key_K, 40, control);
    EXPECT_TRUE(shows(taken));
    startRecording();
    press(Qt::Key_Escape, 53);
    EXPECT_TRUE(shows(taken));
    buttonWith(window(), "Rimuovi")->click();
    EXPECT_FALSE(shows(taken)) << "there is none any more";
    EXPECT_TRUE(shows("Non impostata"));
    EXPECT_EQ(buttonWith(window(), "Rimuovi"), nullptr);
}

} // namespace
} // namespace skylet::test
