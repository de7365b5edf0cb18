// bench_sdbus_server peer: serves each client on its own socket.
// bench_sdbus_server daemon: starts a bus daemon and serves through it.
//
// Uses one event loop, as sd-bus is intended to be used.

#include <signal.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <systemd/sd-bus.h>
#include <systemd/sd-event.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fstream>

#include "bench/UnixSocket.h"
#include "bench/peers/Getter.h"
#include "bench/peers/SdBus.h"

namespace mlk::bench {

namespace {

int getPanelName(sd_bus_message* call, void* /*data*/, sd_bus_error* /*error*/) {
    return sd_bus_reply_method_return(call, "bs", 1, kPanelName);
}

const sd_bus_vtable kGetters[] = {
        SD_BUS_VTABLE_START(0),
        SD_BUS_METHOD("GetPanelName", "", "bs", getPanelName, SD_BUS_VTABLE_UNPRIVILEGED),
        SD_BUS_VTABLE_END};

void serve(sd_bus* bus, sd_event* events) {
    check(sd_bus_add_object_vtable(bus, nullptr, kBusPath, kBusInterface, kGetters, nullptr));
    check(sd_bus_attach_event(bus, events, 0));
}

int acceptClient(sd_event_source* source, int listener, uint32_t /*what*/, void* /*data*/) {
    const int socket = accept4(listener, nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK);
    if (socket < 0) {
        return -errno;
    }
    sd_bus* bus = nullptr;
    sd_id128_t id;
    check(sd_id128_randomize(&id));
    check(sd_bus_new(&bus));
    check(sd_bus_set_fd(bus, socket, socket));
    check(sd_bus_set_server(bus, 1, id));
    check(sd_bus_start(bus));
    // Never freed: in use until the process ends.
    serve(bus, sd_event_source_get_event(source));
    return 0;
}

void servePeers(sd_event* events) {
    static const android::base::unique_fd listener = listenOn(inRuntimeFolder(kPeerSocket));
    check(sd_event_add_io(events, nullptr, listener.get(), EPOLLIN, acceptClient, nullptr));
}

void startDaemon() {
    const std::string configuration = inRuntimeFolder("bus.conf");
    std::ofstream(configuration) << "<busconfig><listen>unix:path=" << inRuntimeFolder(kBusSocket)
                                 << "</listen><auth>EXTERNAL</auth><policy context=\"default\">"
                                    "<allow send_destination=\"*\"/><allow receive_sender=\"*\"/>"
                                    "<allow own=\"*\"/></policy></busconfig>\n";
    int address[2];
    check(pipe2(address, O_CLOEXEC));
    const pid_t daemon = fork();
    if (daemon == 0) {
        (void)prctl(PR_SET_PDEATHSIG, SIGKILL);
        (void)dup2(address[1], STDOUT_FILENO);
        (void)execlp("dbus-daemon", "dbus-daemon", ("--config-file=" + configuration).c_str(),
                     "--nofork", "--nosyslog", "--print-address=1", nullptr);
        _exit(127);
    }
    (void)close(address[1]);
    // The daemon prints its address once it listens.
    char byte = 0;
    if (daemon < 0 || read(address[0], &byte, 1) != 1) {
        throw std::runtime_error("no bus daemon");
    }
    (void)close(address[0]);
}

void serveOnBus(sd_event* events) {
    startDaemon();
    sd_bus* const bus = connectToBus();
    check(sd_bus_request_name(bus, kBusName, 0));
    serve(bus, events);
    sayReady(kBusReady);
}

}  // namespace

}  // namespace mlk::bench

int main(int argc, char** argv) {
    using namespace mlk::bench;
    try {
        sd_event* events = nullptr;
        check(sd_event_new(&events));
        if (argc != 2) {
            return 2;
        }
        strcmp(argv[1], "daemon") == 0 ? serveOnBus(events) : servePeers(events);
        check(sd_event_loop(events));
        return 0;
    } catch (const std::exception& error) {
        fprintf(stderr, "bench_sdbus_server: %s\n", error.what());
        return 1;
    }
}
