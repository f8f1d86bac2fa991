/**
 * @file
 * The texts of the library's result codes.
 */
#ifndef ZUCOM_ERROR_TEXT_H
#define ZUCOM_ERROR_TEXT_H

#include <zucom/zucomExport.h>

/** Looks up the text of a result code; the same that ZUCOM_GetErrorText() copies. */
class ZUCOM_API ZucomErrorText
{
public:
    /**
     * @param code  Any value.
     * @return The constant text, never null; "ZUCOM: unknown error code" for a code without one.
     * @note Any thread may call this at any time.
     */
    static const char* getErrorText(int code);
};

#endif
