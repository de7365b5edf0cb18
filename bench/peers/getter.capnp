@0xd1a9c6f7b2e04583;
using Cxx = import "/capnp/c++.capnp";
$Cxx.namespace("bench");

interface Getter {
    getPanelName @0 () -> (known :Bool, value :Text);
}
