// The receive queue, fed in pieces as a device would, against the model of its rules.

#include <zucom/zuProtQueue.h>

#include "fuzz/fuzz.h"
#include "tests/sdk/queueModel.h"

int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size)
{
    fuzz::Input input(data, size);
    ZuProtQueue queue;
    queueModel::Model model;
    queue.busAddrFilter = model.filter = input.byte();
    while (!input.empty())
    {
        const uint8_t step = input.byte();
        if (step == 0xFF)
        {
            queue.clear();
            model.clear();
        }
        const std::vector<uint8_t> bytes = input.bytes(step % 32);
        const std::size_t room = bytes.size() + step / 64 * 5U;
        const std::size_t count = step % 8 == 7 ? room + 1 : bytes.size();
        std::copy(bytes.begin(), bytes.end(), queue.next(room));
        queue.addSize(count);
        model.add(bytes, room, count);

        std::vector<uint8_t> frame(step % 3 == 0 ? 4096 : step % 16);
        const int64_t result = queue.popProtocol(frame.data(), frame.size());
        const queueModel::Popped expected = model.pop(frame.size());
        fuzz::require(result == expected.result, "the result of popProtocol");
        fuzz::require(std::equal(expected.frame.begin(), expected.frame.end(), frame.begin()), "the frame");
    }
    return 0;
}
