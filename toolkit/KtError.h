// Error reporting: the process-wide chain of pending error and warning
// messages, and the printer that reports it to the user.
#pragma once

#include <iosfwd>

#include "toolkit/KtStr.h"

// One message of a chain. The detail is the older, more specific record that
// this one explains; a record owns its whole detail chain.
class KtExcept
{
public:
    KtExcept();
    KtExcept(int kind, const KtStr& message, KtExcept* detail);
    KtExcept(const KtExcept& other);
    KtExcept& operator=(const KtExcept& other);
    ~KtExcept();

    void setAsError() { _kind = 0; }
    void setAsWarning() { _kind = 1; }
    void extend(const char* text);
    void preExtend(const char* text);

    int isWarning() const { return _kind; }
    bool isError() const { return _kind <= 0; }
    bool hasDetail() const { return _detail != nullptr; }
    const KtExcept* detail() const { return _detail; }
    KtStr message() const { return _message; }

private:
    int _kind; // 0 error, 1 warning
    KtStr _message;
    KtExcept* _detail;
};

// Holds the pending chain. Library code records a message and returns a
// failure value; a caller may record a more general message on top; the top
// level prints and clears the chain with KtCheckException.
class KtExceptionHandler
{
public:
    KtExceptionHandler();
    KtExceptionHandler(const KtExceptionHandler& other);
    KtExceptionHandler& operator=(const KtExceptionHandler&) = delete;
    ~KtExceptionHandler();

    void setAsError(const char* format, ...)
        __attribute__((format(printf, 2, 3)));
    void setAsWarning(const char* format, ...)
        __attribute__((format(printf, 2, 3)));
    // Change the text of the pending head record; without one, nothing.
    void extendException(const char* format, ...)
        __attribute__((format(printf, 2, 3)));
    void preExtendException(const char* format, ...)
        __attribute__((format(printf, 2, 3)));

    void clear();
    bool exceptionOccurred() const { return _head != nullptr; }
    operator int() const { return _head != nullptr; }
    // Only the head's kind counts; older records are never consulted.
    bool errorOccurred() const { return _head && _head->isError(); }
    bool warningOccurred() const { return _head && _head->isWarning(); }
    const KtExcept* exception() const { return _head; }

    // When non-zero, recording an error aborts the process at once.
    static int _errors_are_fatal;

private:
    void _push(int kind, const KtStr& message);

    KtExcept* _head;
};

extern KtExceptionHandler theExceptObj;

// Record an error or a warning on top of the pending chain.
void KtError(const char* format, ...) __attribute__((format(printf, 1, 2)));
void KtWarning(const char* format, ...) __attribute__((format(printf, 1, 2)));

// Prints what is pending to standard error, clears it and returns non-zero
// when the head was an error (0 for a warning or for nothing pending).
int KtCheckException();
// As above; when an error is pending, first records this context message on
// top of it.
int KtCheckException(const char* format, ...)
    __attribute__((format(printf, 1, 2)));

std::ostream& KtPrintException(std::ostream& out, const KtExcept& head);
void KtGetExceptionStr(KtStr* out, const KtExcept& head);

// Breaks text into lines of at most width columns at blanks; a word longer
// than width is never split.
KtStr KtWrapString(const KtStr& text, int width, int tabWidth);
