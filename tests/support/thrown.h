#pragma once

#include <QTest>

/// Fails the test function unless the expression throws a QString, by value, with exactly that text.
#define COMPARE_THROWN_STRING(expression, expected)                                                                    \
    do {                                                                                                               \
        bool isThrown = false;                                                                                         \
        QString thrownText;                                                                                            \
        try {                                                                                                          \
            static_cast<void>(expression);                                                                             \
        } catch (const QString& text) {                                                                                \
            isThrown = true;                                                                                           \
            thrownText = text;                                                                                         \
        } catch (...) {                                                                                                \
            QFAIL("not a QString was thrown by " #expression);                                                         \
        }                                                                                                              \
        QVERIFY2(isThrown, "nothing was thrown by " #expression);                                                      \
        QCOMPARE(thrownText, QString(expected));                                                                       \
    } while (false)

/// The same for an exception that is a plain C string.
#define COMPARE_THROWN_CSTRING(expression, expected)                                                                   \
    do {                                                                                                               \
        const char* thrownText = nullptr;                                                                              \
        try {                                                                                                          \
            static_cast<void>(expression);                                                                             \
        } catch (const char* text) {                                                                                   \
            thrownText = text;                                                                                         \
        } catch (...) {                                                                                                \
            QFAIL("not a C string was thrown by " #expression);                                                        \
        }                                                                                                              \
        QVERIFY2(thrownText, "nothing was thrown by " #expression);                                                    \
        QCOMPARE(thrownText, expected);                                                                                \
    } while (false)
