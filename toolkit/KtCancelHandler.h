// KtCancelHandler: lets an application stop a long read from a callback.
#pragma once

// Readers poll checkCancel() at regular intervals. Nothing is installed by
// default, so the check never cancels.
class KtCancelHandler
{
public:
    using Proc = int (*)(void* data);

    // Returns 1, with the error "Canceled." recorded, when the installed
    // callback asks to cancel; otherwise 0.
    static int checkCancel();

    static Proc _proc;
    static void* _data;
};
