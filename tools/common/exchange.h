// One request and its answer.
#ifndef ZUCOM_TOOLS_EXCHANGE_H
#define ZUCOM_TOOLS_EXCHANGE_H

#include <chrono>
#include <optional>
#include <string>

#include <zucom/zuProtocol.h>

class ReaderPort;

struct Exchange
{
    ZuProt request;
    std::optional<ZuProt> answer;            // whole frame, which may have a wrong check sum
    int code = 0;                            // of the library: negative when there is no answer
    std::chrono::duration<double> time{0.0}; // from before the request to behind the answer, in seconds

    bool isGood() const { return answer && answer->isValidProtocol(); }
    bool portIsGone() const;     // the device failed: no further exchange will work
    std::string failure() const; // why it is not good
};

// Discards what waits in the driver first, so that a late answer to an earlier request is not taken for this one's.
Exchange exchangeFrame(ReaderPort& port, const ZuProt& request);

#endif
