#include <tessel/Handler.h>

CHandler::~CHandler() = default;
