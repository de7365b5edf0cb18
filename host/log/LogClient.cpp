#include "host/log/LogClient.h"

namespace mlk::host {

namespace {

thread_local int tClient = kNoClient;

}  // namespace

LogClient::LogClient(int process) : mFormer(tClient) {
    tClient = process;
}

LogClient::~LogClient() {
    tClient = mFormer;
}

int logClient() {
    return tClient;
}

}  // namespace mlk::host
