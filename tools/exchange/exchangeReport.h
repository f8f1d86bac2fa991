// How exchanges are shown.
#ifndef ZUCOM_TOOLS_EXCHANGE_REPORT_H
#define ZUCOM_TOOLS_EXCHANGE_REPORT_H

#include <string>
#include <vector>

#include "tools/common/exchange.h"

std::string exchangeText(const Exchange& exchange); // request, answer, what the answer says
std::string exchangeJson(const Exchange& exchange); // one line

// What a series came to.
class ExchangeSummary
{
public:
    void add(const Exchange& exchange);
    bool allGood() const { return sent_ > 0 && times_.size() == sent_; }
    std::size_t sent() const { return sent_; }
    std::string text() const; // one line

private:
    std::size_t sent_ = 0;
    std::vector<double> times_; // of the good ones, in ms
};

#endif
