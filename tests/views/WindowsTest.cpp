#include "SettingsScene.h"
#include "settings/views/AboutWindow.h"
#include "settings/views/ClosingWindow.h"
#include "settings/views/FormStyle.h"

#include <QScrollArea>
#include <QScrollBar>

namespace skylet::test {
namespace {

using SettingsWindowTest = SettingsScene;

TEST_F(SettingsWindowTest, IsBuiltOnceAndOnlyWhenOpened) {
    EXPECT_EQ(settings.widget(), nullptr);
    EXPECT_EQ(contents, 0);
    QWidget* window = &open();
    EXPECT_EQ(window->windowTitle(), QStringLiteral("Skylet — Impostazioni"));
    window->close();
    EXPECT_FALSE(window->isVisible());
    EXPECT_EQ(&open(), window);
    EXPECT_TRUE(window->isVisible());
    EXPECT_EQ(contents, 1);
    ASSERT_EQ(ownWindows.brought.size(), 2U);
    EXPECT_EQ(ownWindows.brought.back(), window->winId());
}

TEST_F(SettingsWindowTest, IsAsLargeAsItsContentUpToTheScreensShare) {
    QWidget& window = open();
    const auto* form = window.findChild<QScrollArea*>();
    EXPECT_EQ(form->verticalScrollBar()->maximum(), 0) << "scrolls although there is room";
    EXPECT_EQ(window.minimumSize(), window.maximumSize()) << "resizable";
    const int width = window.width();
    desktop.screens.all.front() = {.frame = {0, 0, 800, 700}, .visibleFrame = {0, 30, 800, 600}};
    desktop.screens.postDidChangeParameters();
    desktop.advance(0);
    settle();
    EXPECT_LE(window.frameGeometry().height(), 480);
    EXPECT_GE(window.height(), 400);
    EXPECT_EQ(window.width(), std::min(width, 640));
    EXPECT_GT(form->verticalScrollBar()->maximum(), 0);
}

TEST_F(SettingsWindowTest, WhatHasTheFocusIsScrolledIntoSight) {
    desktop.screens.all.front() = {.frame = {0, 0, 800, 600}, .visibleFrame = {0, 0, 800, 600}};
    QWidget& window = open();
    const auto* form = window.findChild<QScrollArea*>();
    ASSERT_GT(form->verticalScrollBar()->maximum(), 0);
    for (int i = 0; i < 8; ++i) {
        type(window, Qt::Key_Tab);
        const QWidget* focused = window.focusWidget();
        ASSERT_NE(focused, nullptr);
        EXPECT_EQ(focused->visibleRegion().boundingRect(), focused->rect())
            << focused->accessibleName().toStdString();
    }
}

TEST_F(SettingsWindowTest, ShowsADashWithoutAVersion) {
    SettingsWindow without({desktop.mainQueue, desktop.screens, ownWindows, loginItem}, {});
    without.showWindow({.appName = QStringLiteral("Skylet"), .showsLaunchAtLogin = false},
                       [] { return new QWidget; });
    EXPECT_EQ(textsOf(*without.widget()), (Lines{"Informazioni", "Versione", "—", "Fine"}));
}

// Neither a caption nor a button may be cut, whatever the font.
TEST_F(SettingsWindowTest, NothingIsCutAtAnyFontSize) {
    const QFont usual = QApplication::font();
    for (const double factor : {1.0, 1.5, 2.0}) {
        SCOPED_TRACE(factor);
        QFont font = usual;
        font.setPointSizeF(usual.pointSizeF() * factor);
        QApplication::setFont(font);
        desktop.screens.all = {{.frame = {0, 0, 4000, 4000}, .visibleFrame = {0, 0, 4000, 4000}}};
        SettingsWindow large({desktop.mainQueue, desktop.screens, ownWindows, loginItem}, bundle);
        large.showWindow({.appName = QStringLiteral("Skylet"), .showsLaunchAtLogin = true},
                         [this] { return new SkyletSettingsContent(subjects()); });
        settle();
        for (const QLabel* label : large.widget()->findChildren<QLabel*>()) {
            if (label->isVisible() && !label->text().isEmpty()) {
                EXPECT_GE(label->height(), label->heightForWidth(label->width()))
                    << label->text().toStdString();
                if (!label->wordWrap()) {
                    EXPECT_GE(label->width(), label->sizeHint().width()) << label->text().toStdString();
                }
            }
        }
        for (const QPushButton* button : large.widget()->findChildren<QPushButton*>()) {
            if (button->isVisible()) {
                EXPECT_GE(button->width(), button->fontMetrics().horizontalAdvance(button->text()) + 8);
                EXPECT_GE(button->height(), button->fontMetrics().height() + 4);
            }
        }
        EXPECT_EQ(large.widget()->findChild<QScrollArea*>()->verticalScrollBar()->maximum(), 0);
    }
    QApplication::setFont(usual);
}

TEST_F(SettingsWindowTest, FollowsAnotherFontAndAnotherPalette) {
    QWidget& window = open();
    const QFont usual = QApplication::font();
    const QPalette light = QApplication::palette();
    const int height = window.height();
    QFont larger = usual;
    larger.setPointSizeF(usual.pointSizeF() * 1.3);
    QApplication::setFont(larger);
    settle();
    desktop.advance(0);
    EXPECT_GT(window.height(), height);
    QApplication::setFont(usual);

    QPalette dark = light;
    dark.setColor(QPalette::Window, QColor(42, 46, 50));
    dark.setColor(QPalette::WindowText, QColor(252, 252, 252));
    QApplication::setPalette(dark);
    settle();
    for (const QLabel* label : window.findChildren<QLabel*>()) {
        EXPECT_GE(
            FormStyle::contrast(label->palette().color(QPalette::WindowText), FormStyle::boxColor(dark)), 4.5)
            << label->text().toStdString();
    }
    QApplication::setPalette(light);
}

TEST(FormStyle, EveryToneIsReadableOnEveryGround) {
    const std::tuple<const char*, QColor, QColor> cases[] = {
        {"light", QColor(239, 239, 239), Qt::black},
        {"white", Qt::white, QColor(30, 30, 30)},
        {"beige", QColor(239, 235, 231), Qt::black},
        {"dark", QColor(42, 46, 50), QColor(252, 252, 252)},
        {"black", Qt::black, Qt::white},
        {"dim dark", QColor(56, 56, 56), QColor(222, 222, 222)}};
    for (const auto& [description, window, text] : cases) {
        QPalette palette;
        palette.setColor(QPalette::Window, window);
        palette.setColor(QPalette::WindowText, text);
        for (const QColor& ground : {FormStyle::boxColor(palette), window}) {
            for (const auto tone :
                 {FormStyle::Tone::secondary, FormStyle::Tone::positive, FormStyle::Tone::notice}) {
                EXPECT_GE(FormStyle::contrast(FormStyle::textColor(palette, tone, ground), ground), 4.5)
                    << description << " " << static_cast<int>(tone);
            }
        }
    }
}

TEST(AboutWindow, SaysWhatTheProgramIsAndClosesByEscape) {
    sim::SimOwnWindows ownWindows;
    AboutWindow about(ownWindows, {.name = "Skylet", .shortVersion = "2.0"});
    EXPECT_EQ(about.widget(), nullptr);
    about.showWindow(QStringLiteral("Skylet"));
    ClosingWindow* window = about.widget();
    settle();
    EXPECT_EQ(window->windowTitle(), QStringLiteral("Informazioni su Skylet"));
    EXPECT_EQ(textsOf(*window), (Lines{"Skylet", "Versione 2.0", "Realizzato per Corvane",
                                       "Una finestra flottante ridimensionabile per le tue app.", "Chiudi"}));
    EXPECT_EQ(window->width(), 300);
    const std::function<void()> closings[] = {[&] { type(*window, Qt::Key_Escape); },
                                              [&] { type(*window, Qt::Key_Period, Qt::MetaModifier); },
                                              [&] {
                                                  buttonWith(*window, "Chiudi")->click();
                                              }};
    for (const auto& close : closings) {
        about.showWindow(QStringLiteral("Skylet"));
        EXPECT_EQ(about.widget(), window);
        close();
        EXPECT_FALSE(window->isVisible());
    }
    EXPECT_EQ(ownWindows.brought.size(), 4U);

    AboutWindow unknown(ownWindows, {});
    unknown.showWindow(QStringLiteral("Skylet"));
    EXPECT_EQ(textsOf(*unknown.widget())[1], "Versione 1.0");
}

} // namespace
} // namespace skylet::test
