// JSON as the sub-commands print it.
#include "tools/common/jsonText.h"

#include <nlohmann/json.hpp>

namespace
{

constexpr auto replaceInvalid = nlohmann::ordered_json::error_handler_t::replace;

}

std::string jsonText(const nlohmann::ordered_json& value) { return value.dump(2, ' ', false, replaceInvalid) + '\n'; }

std::string jsonLine(const nlohmann::ordered_json& value) { return value.dump(-1, ' ', false, replaceInvalid) + '\n'; }
