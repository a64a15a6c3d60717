// The pending message chain, its printer and the word wrapper it uses.
#include "toolkit/KtError.h"

#include <cstdlib>
#include <iostream>
#include <sstream>
#include <string>

namespace
{

constexpr int kWrapColumns = 70;
constexpr int kWrapTabWidth = 8;
// Continuation lines start under the first letter after the prefix.
constexpr const char* kErrorIndent = "       ";
constexpr const char* kWarningIndent = "         ";

KtStr formatted(const char* format, va_list args)
{
    KtStr text;
    text.setV(format, args);
    return text;
}

bool isBlank(char c)
{
    return c == ' ' || c == '\t';
}

KtStr indentedMessage(const KtExcept& record, const char* indent)
{
    KtStr text = KtWrapString(record.message(), kWrapColumns, kWrapTabWidth);
    text.replaceAll("\n", KtStr("\n") + indent);
    return text;
}

} // namespace

KtExcept::KtExcept()
    : _kind(0)
    , _detail(nullptr)
{
}

KtExcept::KtExcept(int kind, const KtStr& message, KtExcept* detail)
    : _kind(kind)
    , _message(message)
    , _detail(detail)
{
}

KtExcept::KtExcept(const KtExcept& other)
    : _kind(other._kind)
    , _message(other._message)
    , _detail(other._detail ? new KtExcept(*other._detail) : nullptr)
{
}

KtExcept& KtExcept::operator=(const KtExcept& other)
{
    if (this == &other)
        return *this;
    KtExcept* copied = other._detail ? new KtExcept(*other._detail) : nullptr;
    delete _detail;
    _kind = other._kind;
    _message = other._message;
    _detail = copied;
    return *this;
}

// Deletes the chain record by record so that a long chain cannot exhaust the
// stack through nested destructors.
KtExcept::~KtExcept()
{
    KtExcept* next = _detail;
    while (next)
    {
        KtExcept* following = next->_detail;
        next->_detail = nullptr;
        delete next;
        next = following;
    }
}

void KtExcept::extend(const char* text)
{
    _message = _message + "\n" + text;
}

void KtExcept::preExtend(const char* text)
{
    _message = KtStr(text) + "\n" + _message;
}

int KtExceptionHandler::_errors_are_fatal = 0;

KtExceptionHandler theExceptObj;

KtExceptionHandler::KtExceptionHandler()
    : _head(nullptr)
{
}

KtExceptionHandler::KtExceptionHandler(const KtExceptionHandler& other)
    : _head(other._head ? new KtExcept(*other._head) : nullptr)
{
}

KtExceptionHandler::~KtExceptionHandler()
{
    delete _head;
}

void KtExceptionHandler::_push(int kind, const KtStr& message)
{
    _head = new KtExcept(kind, message, _head);
}

void KtExceptionHandler::setAsError(const char* format, ...)
{
    va_list args;
    va_start(args, format);
    _push(0, formatted(format, args));
    va_end(args);
    if (_errors_are_fatal)
        std::abort();
}

void KtExceptionHandler::setAsWarning(const char* format, ...)
{
    va_list args;
    va_start(args, format);
    _push(1, formatted(format, args));
    va_end(args);
}

void KtExceptionHandler::extendException(const char* format, ...)
{
    if (!_head)
        return;
    va_list args;
    va_start(args, format);
    _head->extend(formatted(format, args));
    va_end(args);
}

void KtExceptionHandler::preExtendException(const char* format, ...)
{
    if (!_head)
        return;
    va_list args;
    va_start(args, format);
    _head->preExtend(formatted(format, args));
    va_end(args);
}

void KtExceptionHandler::clear()
{
    delete _head;
    _head = nullptr;
}

// The message is formatted once and then recorded as it stands, so a '%'
// that arrives in a file name or a bone name is printed, never interpreted.
void KtError(const char* format, ...)
{
    va_list args;
    va_start(args, format);
    KtStr message = formatted(format, args);
    va_end(args);
    theExceptObj.setAsError("%s", message.text());
}

void KtWarning(const char* format, ...)
{
    va_list args;
    va_start(args, format);
    KtStr message = formatted(format, args);
    va_end(args);
    theExceptObj.setAsWarning("%s", message.text());
}

int KtCheckException()
{
    const KtExcept* head = theExceptObj.exception();
    if (!head)
        return 0;
    int wasError = theExceptObj.errorOccurred();
    KtPrintException(std::cerr, *head);
    theExceptObj.clear();
    return wasError;
}

int KtCheckException(const char* format, ...)
{
    if (theExceptObj.errorOccurred())
    {
        va_list args;
        va_start(args, format);
        KtStr context = formatted(format, args);
        va_end(args);
        KtError("%s", context.text());
    }
    return KtCheckException();
}

std::ostream& KtPrintException(std::ostream& out, const KtExcept& head)
{
    // Every line of the chain is indented by the head's kind, not its own.
    const char* indent = head.isWarning() ? kWarningIndent : kErrorIndent;
    out << "\n\n" << (head.isWarning() ? "WARNING: " : "ERROR: ");
    out << indentedMessage(head, indent) << "\n";
    for (const KtExcept* older = head.detail(); older; older = older->detail())
        out << indent << indentedMessage(*older, indent) << "\n";
    out << "\n";
    out.flush();
    return out;
}

void KtGetExceptionStr(KtStr* out, const KtExcept& head)
{
    std::ostringstream text;
    KtPrintException(text, head);
    *out = text.str().c_str();
}

KtStr KtWrapString(const KtStr& textStr, int width, int tabWidth)
{
    if (tabWidth < 1)
        tabWidth = 1;
    const char* text = textStr.text();
    const int n = textStr.length();
    std::string result;
    int lineStart = 0;
    int lastBreak = 0;
    int column = 0;
    int i = 0;
    while (i < n)
    {
        char c = text[i];
        if (isBlank(c) || c == '\n')
            lastBreak = i;
        column = c == '\t' ? (column / tabWidth + 1) * tabWidth : column + 1;
        // Without a break point since the line start the line runs on: an
        // embedded newline then stays and the column is not reset.
        if ((c == '\n' || column > width) && lastBreak != lineStart)
        {
            result.append(text + lineStart, lastBreak - lineStart);
            result += '\n';
            i = lastBreak;
            while (i < n && isBlank(text[i]))
                ++i;
            // A width break followed by a newline yields one break only.
            if (i < n && text[i] == '\n')
                ++i;
            lineStart = lastBreak = i;
            column = 0;
        }
        else
        {
            ++i;
        }
    }
    result.append(text + lineStart, n - lineStart);
    return KtStr(result.c_str());
}
