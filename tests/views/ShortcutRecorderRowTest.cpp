#include "SettingsScene.h"

namespace skylet::test {
namespace {

constexpr const char* press = "Premi la scorciatoia…";
constexpr const char* needsModifier = "Tieni premuto ⌘, ⌃ o ⌥, oppure premi un tasto F";
constexpr const char* taken = "Questa scorciatoia è già usata da un’altra app.";

class ShortcutRecorderRowTest : public SettingsScene {
  protected:
    [[nodiscard]] bool shows(const char* text) {
        return std::ranges::count(textsOf(*settings.widget()), std::string(text)) > 0;
    }
    void startRecording() {
        QAbstractButton* change = buttonWith(open(), "Modifica…");
        ASSERT_NE(change, nullptr);
        change->setFocus();
        type(*settings.widget(), Qt::Key_Space);
        ASSERT_TRUE(shows(press));
        ASSERT_FALSE(desktop.eventTap.enabled);
    }
};

TEST_F(ShortcutRecorderRowTest, KeysThatWindowsUseAreRecordedInstead) {
    struct Case {
        int key;
        quint32 code;
    };
    for (const Case& test : {Case{Qt::Key_Tab, 48}, Case{Qt::Key_Return, 36}, Case{Qt::Key_Space, 49},
                             Case{Qt::Key_W, 13}, Case{Qt::Key_Down, 125}, Case{Qt::Key_Period, 47}}) {
        startRecording();
        type(*settings.widget(), test.key, Qt::ControlModifier, test.code, control);
        EXPECT_EQ(keyCode, test.code);
        EXPECT_EQ(modifiers, control);
        EXPECT_TRUE(settings.widget()->isVisible());
        EXPECT_FALSE(shows(press));
        EXPECT_TRUE(desktop.eventTap.enabled);
    }
    EXPECT_EQ(saves, 6);
}

TEST_F(ShortcutRecorderRowTest, ARefusedKeyChangesTheHint) {
    startRecording();
    type(*settings.widget(), Qt::Key_P, Qt::ShiftModifier, 35, shift);
    EXPECT_TRUE(shows(needsModifier));
    EXPECT_FALSE(shows(press));
    type(*settings.widget(), Qt::Key_Tab, Qt::NoModifier, 48);
    EXPECT_TRUE(shows(needsModifier));
    EXPECT_EQ(settings.widget()->focusWidget(), buttonWith(*settings.widget(), "Annulla"));
    type(*settings.widget(), Qt::Key_F5, Qt::NoModifier, 96);
    EXPECT_EQ(keyCode, 96);
    EXPECT_EQ(modifiers, 0U);
    EXPECT_EQ(saves, 1);
}

TEST_F(ShortcutRecorderRowTest, ModifiersAndRepeatedKeysAreNoKeyDowns) {
    startRecording();
    type(*settings.widget(), Qt::Key_Control, Qt::ControlModifier, 0);
    QKeyEvent repeated(QEvent::KeyPress, Qt::Key_Space, Qt::NoModifier, 49, 0, 0, QString(), true);
    QApplication::sendEvent(settings.widget(), &repeated);
    EXPECT_TRUE(shows(press));
    EXPECT_EQ(saves, 0);
}

TEST_F(ShortcutRecorderRowTest, EscapeCancelsOnlyTheRecording) {
    startRecording();
    type(*settings.widget(), Qt::Key_Escape, Qt::NoModifier, 53);
    EXPECT_TRUE(settings.widget()->isVisible());
    EXPECT_FALSE(shows(press));
    EXPECT_EQ(keyCode, 35);
    EXPECT_EQ(saves, 0);
    EXPECT_EQ(settings.widget()->focusWidget(), buttonWith(*settings.widget(), "Modifica…"));
    type(*settings.widget(), Qt::Key_Escape, Qt::NoModifier, 53);
    EXPECT_FALSE(settings.widget()->isVisible());
}

TEST_F(ShortcutRecorderRowTest, CancelButtonAndClosingRestoreTheTap) {
    startRecording();
    buttonWith(*settings.widget(), "Annulla")->click();
    EXPECT_TRUE(desktop.eventTap.enabled);
    startRecording();
    settings.widget()->close();
    EXPECT_TRUE(desktop.eventTap.enabled);
    open();
    EXPECT_FALSE(shows(press));
    type(*settings.widget(), Qt::Key_P, Qt::ControlModifier, 40, control);
    EXPECT_EQ(keyCode, 35) << "recorded after all";
}

TEST_F(ShortcutRecorderRowTest, ClearingTakesTheButtonAway) {
    QWidget& window = open();
    buttonWith(window, "Rimuovi")->click();
    EXPECT_EQ(keyCode, 0);
    EXPECT_TRUE(shows("Non impostata"));
    EXPECT_EQ(buttonWith(window, "Rimuovi"), nullptr);
}

TEST_F(ShortcutRecorderRowTest, AShortcutOfAnotherProgramIsSaid) {
    desktop.eventTap.keyIsFree = false;
    startRecording();
    EXPECT_FALSE(shows(taken)) << "not while another one is being recorded";
    type(*settings.widget(), Qt::Key_K, Qt::ControlModifier, 40, control);
    EXPECT_TRUE(shows(taken));
    desktop.eventTap.keyIsFree = true;
    startRecording();
    type(*settings.widget(), Qt::Key_J, Qt::ControlModifier, 38, control);
    EXPECT_FALSE(shows(taken));
}

} // namespace
} // namespace skylet::test
