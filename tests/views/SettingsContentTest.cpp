#include "SettingsScene.h"
#include "foundation/PreferenceKeys.h"

#include <QAccessible>

namespace skylet::test {
namespace {

using Texts = std::vector<std::string>;

constexpr const char* rateTitle = "Frequenza massima di aggiornamento";
constexpr const char* forwardTitle = "Interagisci con la finestra flottante";
constexpr const char* spacesTitle = "Mostra su tutte le Scrivanie";
constexpr const char* iconTitle = "Mostra l’icona nella barra dei menu";
constexpr const char* pillTitle = "Mostra lo sfondo dell’icona";
constexpr const char* loginTitle = "Apri all’accesso";
constexpr const char* hint = "Per ripristinare l’icona, riapri Skylet dalla cartella Applicazioni.";

class SettingsContentTest : public SettingsScene {
  protected:
    [[nodiscard]] bool shows(QWidget& window, const std::string& text) {
        return std::ranges::count(textsOf(window), text) > 0;
    }
};

constexpr const char* rateCaption = "La finestra flottante si aggiorna quando cambia il contenuto; una "
                                    "frequenza alta non pesa se l’immagine è ferma.";
constexpr const char* forwardCaption =
    "I clic e lo scorrimento vengono inviati alla finestra fissata. Fai clic tenendo premuto ⌘ per passare "
    "alla finestra originale. Se disattivata, basta un clic per tornare alla finestra originale.";
constexpr const char* accessibilityCaption =
    "Necessaria per usare la scorciatoia da tastiera e portare in primo piano le finestre fissate.";
constexpr const char* postingCaption =
    "Necessaria per usare clic e scorrimento sulla finestra flottante senza attivare la finestra originale.";

TEST_F(SettingsContentTest, SaysEverythingInOrder) {
    desktop.eventPoster.permitted = false;
    EXPECT_EQ(textsOf(open()),
              (Texts{"Finestre flottanti",
                     rateTitle,
                     "30 fps",
                     rateCaption,
                     forwardTitle,
                     forwardCaption,
                     spacesTitle,
                     "Scorciatoia da tastiera",
                     "Fissa o sblocca la finestra",
                     "⌃⌘P",
                     "Rimuovi",
                     "Modifica…",
                     "Autorizzazioni",
                     "Accessibilità",
                     "Autorizzata",
                     accessibilityCaption,
                     "Invio di clic e scorrimento",
                     "Consenti accesso",
                     postingCaption,
                     "Registrazione schermo",
                     "Autorizzata",
                     "Necessaria per acquisire il contenuto della finestra e mostrarlo in tempo reale.",
                     "Barra dei menu",
                     iconTitle,
                     "Icona della barra dei menu",
                     pillTitle,
                     "Generali",
                     loginTitle,
                     "Informazioni",
                     "Versione",
                     "1.2.3",
                     "Fine"}));
}

TEST_F(SettingsContentTest, TogglesWriteAtOnceAndFollowTheStore) {
    struct Case {
        const char* title;
        std::string_view key;
        bool whenAbsent;
        bool inverted = false;
    };
    QWidget& window = open();
    for (const Case& test : {Case{forwardTitle, PreferenceKeys::forwardEvents, true},
                             Case{spacesTitle, PreferenceKeys::pinToAllSpaces, false},
                             Case{pillTitle, PreferenceKeys::menuBarPillEnabled, false},
                             Case{iconTitle, "hidden", true, true}}) {
        SCOPED_TRACE(test.title);
        auto* toggle = named<QAbstractButton>(window, test.title);
        ASSERT_NE(toggle, nullptr);
        EXPECT_EQ(toggle->isChecked(), test.whenAbsent);
        EXPECT_FALSE(desktop.defaults.contains(test.key)) << "written before anybody changed it";
        toggle->click();
        EXPECT_EQ(desktop.defaults.readBool(test.key).value, test.whenAbsent == test.inverted);
        desktop.defaults.setBool(test.key, test.whenAbsent != test.inverted);
        EXPECT_EQ(toggle->isChecked(), test.whenAbsent);
    }
    EXPECT_EQ(iconUpdates, 2) << "the background changed twice";
}

TEST_F(SettingsContentTest, TheRateIsPickedAndFollowed) {
    QWidget& window = open();
    auto* picker = named<QComboBox>(window, rateTitle);
    ASSERT_NE(picker, nullptr);
    EXPECT_EQ(picker->count(), 8);
    type(window, Qt::Key_Tab);
    EXPECT_EQ(window.focusWidget(), picker);
    type(window, Qt::Key_Down);
    EXPECT_EQ(desktop.defaults.readDouble(PreferenceKeys::captureRate).value, 60.0);
    desktop.defaults.setDouble(PreferenceKeys::captureRate, 0.5);
    EXPECT_EQ(picker->currentText(), QStringLiteral("0.5 fps"));
    desktop.defaults.setDouble(PreferenceKeys::captureRate, 24);
    EXPECT_EQ(picker->currentIndex(), -1);
    EXPECT_EQ(picker->placeholderText(), QStringLiteral("24 fps"));
    EXPECT_EQ(desktop.defaults.readDouble(PreferenceKeys::captureRate).value, 24.0);
}

TEST_F(SettingsContentTest, PermissionsAreAskedForAndFollowed) {
    desktop.accessibility.trusted = false;
    desktop.eventPoster.permitted = false;
    desktop.capture.permitted = false;
    QWidget& window = open();
    const auto allow = [&](const char* title) {
        auto* button = named<QPushButton>(window, (std::string("Consenti accesso — ") + title).c_str());
        ASSERT_NE(button, nullptr) << title;
        ASSERT_TRUE(button->isVisible()) << title;
        button->click();
    };
    allow("Accessibilità");
    EXPECT_EQ(allowed, 1);
    allow("Invio di clic e scorrimento");
    EXPECT_EQ(desktop.eventPoster.requests, 1);
    allow("Registrazione schermo");
    EXPECT_EQ(desktop.workspace.openedURLs,
              (Texts{"x-apple.systempreferences:com.apple.preference.security?Privacy_ScreenCapture"}));
    desktop.accessibility.trusted = true;
    desktop.eventPoster.permitted = true;
    desktop.capture.permitted = true;
    desktop.advance(1);
    EXPECT_EQ(buttonWith(window, "Consenti accesso"), nullptr);
    const Texts texts = textsOf(window);
    EXPECT_EQ(std::ranges::count(texts, "Autorizzata"), 2);
    EXPECT_EQ(std::ranges::count(texts, "Autorizzato"), 1);
    desktop.capture.permitted = false;
    notifications.becomeActive();
    EXPECT_NE(buttonWith(window, "Consenti accesso"), nullptr);
}

TEST_F(SettingsContentTest, AHiddenIconComesWithTheHint) {
    QWidget& window = open();
    auto* toggle = named<QAbstractButton>(window, iconTitle);
    EXPECT_FALSE(shows(window, hint));
    const int height = window.height();
    toggle->click();
    settle();
    EXPECT_TRUE(shows(window, hint));
    desktop.advance(0);
    EXPECT_GT(window.height(), height) << "there is room for the hint on this screen";
    desktop.defaults.setBool("hidden", false); // opened again from outside
    EXPECT_FALSE(shows(window, hint));
    EXPECT_TRUE(toggle->isChecked());
}

TEST_F(SettingsContentTest, WithoutANameTheHintSpeaksOfTheApp) {
    bundle.name.reset();
    desktop.defaults.setBool("hidden", true);
    EXPECT_TRUE(shows(open(), "Per ripristinare l’icona, riapri l’app dalla cartella Applicazioni."));
}

TEST_F(SettingsContentTest, LaunchAtLoginRevertsWhenItFails) {
    QWidget& window = open();
    auto* toggle = named<QAbstractButton>(window, loginTitle);
    ASSERT_NE(toggle, nullptr);
    toggle->click();
    EXPECT_TRUE(loginItem.enabled);
    loginItem.refuses = true;
    toggle->click();
    EXPECT_TRUE(toggle->isChecked());
    loginItem.enabled = false; // switched off by the desktop's own tools
    window.close();
    open();
    EXPECT_FALSE(toggle->isChecked());
    toggle->click();
    EXPECT_FALSE(toggle->isChecked());
}

TEST_F(SettingsContentTest, ControlsTellScreenReadersWhatTheyAre) {
    QWidget& window = open();
    for (const char* title : {forwardTitle, spacesTitle, iconTitle, pillTitle, loginTitle}) {
        auto* toggle = named<QAbstractButton>(window, title);
        ASSERT_NE(toggle, nullptr) << title;
        QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(toggle);
        ASSERT_NE(accessible, nullptr);
        EXPECT_EQ(accessible->role(), QAccessible::CheckBox);
        EXPECT_TRUE(accessible->state().checkable);
        EXPECT_EQ(accessible->state().checked, toggle->isChecked());
        EXPECT_EQ(accessible->text(QAccessible::Name), QString::fromUtf8(title));
        // As a screen reader toggles it.
        accessible->actionInterface()->doAction(QAccessibleActionInterface::toggleAction());
        EXPECT_EQ(accessible->state().checked, toggle->isChecked());
    }
    EXPECT_TRUE(desktop.defaults.readBool(PreferenceKeys::pinToAllSpaces).value);
    EXPECT_TRUE(loginItem.enabled);
    // A picker's name is its value here; its title is the label's.
    auto* picker = named<QComboBox>(window, rateTitle);
    const auto labels = QAccessible::queryAccessibleInterface(picker)->relations(QAccessible::Label);
    ASSERT_EQ(labels.size(), 1);
    EXPECT_EQ(labels.front().first->text(QAccessible::Name), QString::fromUtf8(rateTitle));
    const auto* forward = named<QAbstractButton>(window, forwardTitle);
    EXPECT_TRUE(forward->accessibleDescription().startsWith(QStringLiteral("I clic e lo scorrimento")));
}

TEST_F(SettingsContentTest, TabGoesThroughEveryControlFromTopToBottom) {
    desktop.eventPoster.permitted = false;
    QWidget& window = open();
    EXPECT_EQ(window.focusWidget(), nullptr) << "nothing looks chosen at first";
    Texts names;
    for (int i = 0; i < 9; ++i) {
        type(window, Qt::Key_Tab);
        ASSERT_NE(window.focusWidget(), nullptr);
        const QString name = window.focusWidget()->accessibleName();
        names.push_back((name.isEmpty() ? wordsOf(*window.focusWidget()) : name).toStdString());
    }
    EXPECT_EQ(names,
              (Texts{rateTitle, forwardTitle, spacesTitle, "Rimuovi — Fissa o sblocca la finestra",
                     "Modifica… — Fissa o sblocca la finestra",
                     "Consenti accesso — Invio di clic e scorrimento", iconTitle, pillTitle, loginTitle}));
    type(window, Qt::Key_Space);
    EXPECT_TRUE(loginItem.enabled);
    type(window, Qt::Key_Tab);
    EXPECT_EQ(window.focusWidget(), buttonWith(window, "Fine"));
    type(window, Qt::Key_Return);
    EXPECT_FALSE(window.isVisible());
}

} // namespace
} // namespace skylet::test
