// What zucom doctor says about drivers that a pseudo-terminal alone cannot be.
#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>

#include <sys/ioctl.h>

#include "tests/support/deviceFaults.h"
#include "tests/support/ptyReader.h"
#include "tools/doctor/lineChecks.h"

namespace
{

struct LineCase
{
    const char* name;
    LineQuestions questions;
    void (*prepare)(DeviceFaults& device);
    const char* step;
    Verdict verdict;
    const char* text; // part of it
};

std::ostream& operator<<(std::ostream& stream, const LineCase& testCase) { return stream << testCase.name; }

const LineCase lineCases[] = {
    {"rs485Granted", {true, true, false}, [](DeviceFaults&) {}, "RS485", Verdict::ok, "asked and granted: RTS high"},
    {"rs485NotGranted",
     {true, true, false},
     [](DeviceFaults& device) { device.fail("ioctl(fd, TIOCSRS485", 1, EINVAL); },
     "RS485",
     Verdict::fail,
     "Invalid argument"},
    {"rs485Ignored",
     {true, true, false},
     [](DeviceFaults& device) { device.answer("ioctl(fd, TIOCSRS485", 0, 0); },
     "RS485",
     Verdict::fail,
     "reports success and stays off"},
    {"rs485NotAskedFor",
     {true, false, false},
     [](DeviceFaults& device) { device.rs485.flags = SER_RS485_ENABLED; },
     "RS485",
     Verdict::ok,
     "knows RS485, on"},
    {"rs485Unknown",
     {true, true, false},
     [](DeviceFaults& device) { device.hasRs485 = false; },
     "RS485",
     Verdict::fail,
     "knows no RS485"},
    {"modemLines",
     {true, false, true},
     [](DeviceFaults& device) { device.modemLines = TIOCM_DTR | TIOCM_CTS; },
     "modem lines",
     Verdict::ok,
     "DTR on, RTS off, CTS on, DCD off, DSR off"},
    {"busy",
     {true, false, false},
     [](DeviceFaults& device) { device.fail("open(", 1, EBUSY); },
     "opening",
     Verdict::fail,
     "busy"},
    {"brokenHardware",
     {true, false, false},
     [](DeviceFaults& device) { device.fail("tcgetattr(", 1, EIO); },
     "terminal",
     Verdict::fail,
     "Input/output error"},
    {"deviceGoneHalfway",
     {true, false, false},
     [](DeviceFaults& device) { device.fail("tcgetattr(", 2, EIO); },
     "settings",
     Verdict::warn,
     "does not keep 4800"},
};

class LineChecks : public testing::TestWithParam<LineCase>
{
protected:
    PtyReader reader_;
};

TEST_P(LineChecks, sayWhatTheDriverDoesAndPutEverythingBack)
{
    const std::string before = DeviceFaults::lineText(reader_.line());
    DeviceFaults device;
    GetParam().prepare(device);
    const serial_rs485 rs485Before = device.rs485;
    Findings findings;
    checkLine(reader_.path(), GetParam().questions, findings);
    device.clearRules();

    const auto found = std::find_if(findings.begin(), findings.end(),
                                    [](const Finding& finding) { return finding.step == GetParam().step; });
    ASSERT_NE(findings.end(), found);
    EXPECT_EQ(GetParam().verdict, found->verdict) << found->text;
    EXPECT_NE(std::string::npos, found->text.find(GetParam().text)) << found->text;
    EXPECT_EQ(GetParam().verdict == Verdict::ok, found->remedy.empty());
    EXPECT_EQ(before, DeviceFaults::lineText(reader_.line()));
    EXPECT_EQ(rs485Before.flags, device.rs485.flags);
    EXPECT_EQ(-1, device.descriptor());
}

INSTANTIATE_TEST_SUITE_P(Drivers, LineChecks, testing::ValuesIn(lineCases),
                         [](const auto& testCase) { return std::string(testCase.param.name); });

// Nothing is tried on a line that somebody else uses, and no modem line is looked at unasked.
TEST(LineChecksOf, aLineInUseOnlyLook)
{
    const PtyReader reader;
    DeviceFaults device;
    Findings findings;
    EXPECT_TRUE(checkLine(reader.path(), {false, true, false}, findings));
    for (const std::string& call : device.take())
    {
        EXPECT_FALSE(call.starts_with("ioctl(fd, TIOCSRS485") || call.starts_with("ioctl(fd, TIOCM")) << call;
    }
}

} // namespace
