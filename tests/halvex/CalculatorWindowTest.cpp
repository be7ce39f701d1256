#include "apps/halvex/CalculatorWindow.h"

#include "apps/halvex/FittingLabel.h"
#include "apps/halvex/KeyButton.h"
#include "apps/halvex/NumberText.h"

#include <QApplication>
#include <QClipboard>
#include <QTest>

#include <gtest/gtest.h>

#include <set>

using namespace apps;

namespace {

const QLocale kGerman(QLocale::German, QLocale::Germany);
const QLocale kEnglish(QLocale::English, QLocale::UnitedStates);
const QLocale kFrench(QLocale::French, QLocale::France);

std::string display(const QWidget& window) {
    return window.findChild<FittingLabel*>()->text().toStdString();
}

KeyButton* button(const QWidget& window, const QString& name) {
    const auto keys = window.findChildren<KeyButton*>();
    return *std::ranges::find(keys, name, &KeyButton::accessibleName);
}

TEST(CalculatorWindow, CalculatesWhatIsTypedOnTheKeyboard) {
    const std::tuple<const char*, Qt::Key, const char*> cases[] = {
        {"1,5+2", Qt::Key_Return, "3,5"},
        {"1.5*4", Qt::Key_Enter, "6"},
        {"1000000x1000", Qt::Key_Equal, "1.000.000.000"},
        {"7/0", Qt::Key_Return, "Cannot divide by zero"},
        {"78", Qt::Key_Backspace, "7"},
        {"200+10%", Qt::Key_Return, "220"},
        {"12", Qt::Key_F9, "\u221212"},
        {"3+4", Qt::Key_Escape, "0"},
        {"12345678:0.0001", Qt::Key_Return, "123.456.780.000"},
    };
    for (const auto& [typed, last, result] : cases) {
        CalculatorWindow window(kGerman);
        QTest::keyClicks(&window, typed);
        QTest::keyClick(&window, last);
        EXPECT_EQ(display(window), result) << typed;
    }
    CalculatorWindow window(kGerman);
    QTest::keyClicks(&window, "5");
    QTest::keyClick(&window, Qt::Key_P, Qt::ControlModifier);
    QTest::keyClicks(&window, "7");
    QTest::keyClick(&window, Qt::Key_R, Qt::ControlModifier);
    EXPECT_EQ(display(window), "5");
}

TEST(CalculatorWindow, HasAButtonWithAnAccessibleNameOfItsOwnForEveryKey) {
    CalculatorWindow window(kGerman);
    std::set<QString> names;
    for (const KeyButton* key : window.findChildren<KeyButton*>())
        EXPECT_TRUE(names.insert(key->accessibleName()).second) << key->text().toStdString();
    for (const char* name : {"1", "0", "Decimal point", "5", "Multiply", "2", "Equals",
                             "Memory add", "Change sign", "Add", "Memory recall", "Equals"}) {
        ASSERT_TRUE(names.contains(name)) << name;
        QTest::mouseClick(button(window, name), Qt::LeftButton);
    }
    EXPECT_EQ(display(window), "0");
    EXPECT_EQ(button(window, "Decimal point")->text(), ",");
}

TEST(CalculatorWindow, ChecksThePendingOperatorAndEnablesMemoryRecallWhenTheMemoryIsSet) {
    CalculatorWindow window(kEnglish);
    const KeyButton* recall = button(window, "Memory recall");
    const KeyButton* multiply = button(window, "Multiply");
    EXPECT_FALSE(recall->isEnabled());
    QTest::keyClicks(&window, "6*");
    EXPECT_TRUE(multiply->isChecked());
    QTest::mouseClick(button(window, "Multiply"), Qt::LeftButton);
    EXPECT_TRUE(multiply->isChecked()) << "a click leaves it checked";
    QTest::keyClicks(&window, "7");
    EXPECT_FALSE(multiply->isChecked());
    EXPECT_EQ(button(window, "Clear")->text(), "C");
    QTest::mouseClick(button(window, "Memory add"), Qt::LeftButton);
    EXPECT_TRUE(recall->isEnabled());
    EXPECT_EQ(button(window, "Clear")->text(), "AC");
}

TEST(CalculatorWindow, CopiesAndPastesNumbersInTheLocalesNotation) {
    CalculatorWindow window(kGerman);
    QClipboard* clipboard = QApplication::clipboard();
    clipboard->setText(" 1.234,5\n");
    window.paste();
    EXPECT_EQ(display(window), "1.234,5");
    clipboard->setText("twelve");
    window.paste();
    EXPECT_EQ(display(window), "1.234,5") << "other text changes nothing";
    QTest::keyClicks(&window, "-2000=");
    window.copy();
    EXPECT_EQ(clipboard->text(), "-765,5");
}

TEST(NumberText, ConvertsBetweenTheCalculatorsAndTheLocalesNotation) {
    using Case = std::tuple<QLocale, QString, const char*>;
    const Case pasted[] = {
        {kGerman, "0.5", "0.5"},
        {kGerman, "1.234.567,25", "1234567.25"},
        {kGerman, "-,5", "-.5"},
        {kEnglish, "\u22127e-3", "-7e-3"},
        {kFrench, "1\u00a0234\u202f567", "1234567"},
        {kEnglish, "\u0661\u0662", "12"},
    };
    for (const auto& [locale, text, number] : pasted)
        EXPECT_EQ(normalizeNumber(text, locale), number) << text.toStdString();
    const Case displayed[] = {
        {kGerman, "\u22121.234.567,0625", "-1234567.0625"},
        {kEnglish, "1,234,567.", "1234567."},
        {kGerman, "1,5e\u221220", "1.5e-20"},
    };
    for (const auto& [locale, text, number] : displayed)
        EXPECT_EQ(formatForDisplay(number, locale).toStdString(), text.toStdString());
}

} // namespace
