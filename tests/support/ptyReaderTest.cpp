#include "tests/support/ptyReader.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <unistd.h>

namespace
{

TEST(PtyReaderTest, writesPiecesOneByOneAndReadsWhatWasSent)
{
    PtyReader reader;
    const int device = open(reader.path(), O_RDWR | O_NOCTTY | O_CLOEXEC);
    ASSERT_GE(device, 0);
    reader.answers({{1, 2}, {3}});
    uint8_t bytes[8];
    reader.writeNext();
    EXPECT_EQ(2, read(device, bytes, sizeof bytes));
    reader.writeNext();
    reader.writeNext();
    EXPECT_EQ(1, read(device, bytes, sizeof bytes));
    EXPECT_EQ(3, write(device, "\n\r\x03", 3));
    EXPECT_EQ((Bytes{'\n', '\r', 3}), reader.read(3));
    reader.hangUp();
    EXPECT_EQ(-1, write(device, "x", 1));
    close(device);
}

} // namespace
