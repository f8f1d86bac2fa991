/**
 * @file
 * What the tests of the exported functions start from.
 */
#ifndef TESTS_API_API_TEST_H
#define TESTS_API_API_TEST_H

#include <string>

#include <gtest/gtest.h>

#include <zucom/zucom.h>

#include "tests/support/deviceFaults.h"
#include "tests/support/logCapture.h"
#include "tests/support/ptyReader.h"

/** @return The last error of a port, or with 0 of the library; checks that its text belongs to it. */
inline int lastError(int handle)
{
    int code = 1;
    char text[ZUCOM_ERROR_TEXT_SIZE];
    char expected[ZUCOM_ERROR_TEXT_SIZE];
    EXPECT_EQ(0, ZUCOM_GetLastError(handle, &code, text));
    EXPECT_EQ(0, ZUCOM_GetErrorText(code, expected));
    EXPECT_STREQ(expected, text);
    return code;
}

class ApiTest : public testing::Test
{
protected:
    LogCapture log_;
    PtyReader reader_;
    DeviceFaults device_;

    ~ApiTest() override
    {
        device_.clearRules();
        for (int handle = ZUCOM_GetPortList(0); handle > 0; handle = ZUCOM_GetPortList(0))
            ZUCOM_ClosePort(handle);
        LogCapture::take();
    }

    /** Opens one more port on the reader's device. */
    int open() const
    {
        reader_.release();
        const int handle = ZUCOM_OpenPort(reader_.path());
        EXPECT_GT(handle, 0);
        return handle;
    }
};

#endif
