// The cancel check polled by the readers.
#include "toolkit/KtCancelHandler.h"

#include "toolkit/KtError.h"

KtCancelHandler::Proc KtCancelHandler::_proc = nullptr;
void* KtCancelHandler::_data = nullptr;

int KtCancelHandler::checkCancel()
{
    if (!_proc || _proc(_data) == 0)
        return 0;
    theExceptObj.setAsError("Canceled.");
    return 1;
}
