#ifndef OVRA_REST_RESPONSEIMPL_H
#define OVRA_REST_RESPONSEIMPL_H

#include "Answer.h"

#include <ovra/rest/RestResponse.h>

class __attribute__((visibility("hidden"))) RestResponse::Impl
{
public:
    std::optional<ovra::rest::Answer> answer; ///< nothing until an answer was received
    Json::Value nothing;                      ///< what an index beyond the records refers to
};

#endif
