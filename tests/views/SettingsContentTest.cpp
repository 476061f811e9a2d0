#include "SettingsScene.h"
#include "foundation/PreferenceKeys.h"

#include <QAccessible>

namespace skylet::test {
namespace {

constexpr const char* rateTitle = "Frequenza massima di aggiornamento";
constexpr const char* forwardTitle = "Interagisci con la finestra flottante";
constexpr const char* spacesTitle = "Mostra su tutte le Scrivanie";
constexpr const char* iconTitle = "Mostra l’icona nella barra dei menu";
constexpr const char* pillTitle = "Mostra lo sfondo dell’icona";
constexpr const char* loginTitle = "Apri all’accesso";
constexpr const char* hint = "Per ripristinare l’icona, riapri Skylet dalla cartella Applicazioni.";

using SettingsContentTest = SettingsScene;

TEST_F(SettingsContentTest, SaysEverythingInOrder) {
    desktop.eventPoster.permitted = false;
    std::string all;
    for (const std::string& text : textsOf(open())) {
        all += text + "|";
    }
    EXPECT_EQ(
        all,
        "Finestre flottanti|Frequenza massima di aggiornamento|30 fps|"
        "La finestra flottante si aggiorna quando cambia il contenuto; una frequenza alta non pesa se "
        "l’immagine è ferma.|Interagisci con la finestra flottante|"
        "I clic e lo scorrimento vengono inviati alla finestra fissata. Fai clic tenendo premuto ⌘ per "
        "passare alla finestra originale. Se disattivata, basta un clic per tornare alla finestra originale.|"
        "Mostra su tutte le Scrivanie|"
        "Scorciatoia da tastiera|Fissa o sblocca la finestra|⌃⌘P|Rimuovi|Modifica…|"
        "Autorizzazioni|Accessibilità|Autorizzata|"
        "Necessaria per usare la scorciatoia da tastiera e portare in primo piano le finestre fissate.|"
        "Invio di clic e scorrimento|Consenti accesso|"
        "Necessaria per usare clic e scorrimento sulla finestra flottante senza attivare la finestra "
        "originale.|Registrazione schermo|Autorizzata|"
        "Necessaria per acquisire il contenuto della finestra e mostrarlo in tempo reale.|"
        "Barra dei menu|Mostra l’icona nella barra dei menu|Icona della barra dei menu|"
        "Mostra lo sfondo dell’icona|Generali|Apri all’accesso|Informazioni|Versione|1.2.3|Fine|");
}

TEST_F(SettingsContentTest, TogglesWriteAtOnceAndFollowTheStore) {
    QWidget& window = open();
    struct {
        const char* title;
        std::string_view key;
        bool whenAbsent;
        bool inverted = false;
    } const cases[] = {{forwardTitle, PreferenceKeys::forwardEvents, true},
                       {spacesTitle, PreferenceKeys::pinToAllSpaces, false},
                       {pillTitle, PreferenceKeys::menuBarPillEnabled, false},
                       {iconTitle, "hidden", true, true}};
    for (const auto& test : cases) {
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
    QWidget& window = open();
    auto& opened = desktop.workspace.openedURLs;
    const std::tuple<const char*, bool*, std::array<std::size_t, 3>> cases[] = {
        {"Accessibilità", &desktop.accessibility.trusted, {1, 0, 0}},
        {"Invio di clic e scorrimento", &desktop.eventPoster.permitted, {1, 1, 0}},
        {"Registrazione schermo", &desktop.capture.permitted, {1, 1, 1}},
    };
    for (const auto& [title, permission, asked] : cases) {
        SCOPED_TRACE(title);
        EXPECT_EQ(buttonWith(window, "Consenti accesso"), nullptr);
        *permission = false;
        notifications.becomeActive();
        auto* button = buttonWith(window, "Consenti accesso");
        ASSERT_NE(button, nullptr);
        EXPECT_EQ(button->accessibleName().toStdString(), std::string("Consenti accesso — ") + title);
        button->click();
        EXPECT_EQ((std::array{allowed, desktop.eventPoster.requests, opened.size()}), asked);
        *permission = true;
        desktop.advance(1);
    }
    EXPECT_EQ(opened, Lines{"x-apple.systempreferences:com.apple.preference.security?Privacy_ScreenCapture"});
    const Lines texts = textsOf(window);
    EXPECT_EQ(std::ranges::count(texts, "Autorizzata"), 2);
    EXPECT_EQ(std::ranges::count(texts, "Autorizzato"), 1);
}

TEST_F(SettingsContentTest, AHiddenIconComesWithTheHint) {
    QWidget& window = open();
    auto* toggle = named<QAbstractButton>(window, iconTitle);
    EXPECT_FALSE(shows(hint));
    const int height = window.height();
    toggle->click();
    settle();
    EXPECT_TRUE(shows(hint));
    desktop.advance(0);
    EXPECT_GT(window.height(), height) << "there is room for the hint on this screen";
    desktop.defaults.setBool("hidden", false); // opened again from outside
    EXPECT_FALSE(shows(hint));
    EXPECT_TRUE(toggle->isChecked());
}

TEST_F(SettingsContentTest, WithoutANameTheHintSpeaksOfTheApp) {
    bundle.name.reset();
    desktop.defaults.setBool("hidden", true);
    open();
    EXPECT_TRUE(shows("Per ripristinare l’icona, riapri l’app dalla cartella Applicazioni."));
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
    Lines names;
    for (int i = 0; i < 9; ++i) {
        type(window, Qt::Key_Tab);
        ASSERT_NE(window.focusWidget(), nullptr);
        const QString name = window.focusWidget()->accessibleName();
        names.push_back((name.isEmpty() ? wordsOf(*window.focusWidget()) : name).toStdString());
    }
    EXPECT_EQ(names,
              (Lines{rateTitle, forwardTitle, spacesTitle, "Rimuovi — Fissa o sblocca la finestra",
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
