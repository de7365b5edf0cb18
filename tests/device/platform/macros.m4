# The platform's macros that a vendor's policy uses.

define(`r_file_perms', `{ getattr open read ioctl lock map watch watch_reads }')
define(`w_file_perms', `{ open append write lock map }')
define(`rw_file_perms', `{ getattr open read ioctl lock map watch watch_reads append write }')
define(`r_dir_perms', `{ open getattr read search ioctl lock watch watch_reads }')
define(`rw_dir_perms', `{ open getattr read search ioctl lock watch watch_reads add_name remove_name write }')

define(`domain_trans', `
allow $1 $2:file { getattr open read execute map };
allow $1 $3:process transition;
allow $3 $2:file { entrypoint open read execute getattr map };
allow $3 $1:process sigchld;
dontaudit $1 $3:process noatsecure;
allow $1 $3:process { siginh rlimitinh };
')
define(`init_daemon_domain', `
domain_trans(init, $1_exec, $1)
type_transition init $1_exec:process $1;
')

define(`r_dir_file', `
allow $1 $2:dir r_dir_perms;
allow $1 $2:{ file lnk_file } r_file_perms;
')

define(`get_prop', `allow $1 $2:file { getattr open read map };')
define(`set_prop', `
allow $1 property_socket:sock_file write;
allow $1 init:unix_stream_socket connectto;
allow $1 $2:property_service set;
get_prop($1, $2)
')
define(`vendor_internal_prop', `
type $1, property_type, vendor_property_type, vendor_internal_property_type;
neverallow coredomain $1:file { getattr open read map };
neverallow coredomain $1:property_service set;
')

define(`hwbinder_use', `
allow $1 hwservicemanager:binder { call transfer };
allow hwservicemanager $1:binder { call transfer };
allow hwservicemanager $1:dir search;
allow hwservicemanager $1:file { read open map };
allow hwservicemanager $1:process getattr;
')
define(`add_hwservice', `
allow $1 $2:hwservice_manager { add find };
allow $1 hidl_base_hwservice:hwservice_manager add;
neverallow { domain -$1 } $2:hwservice_manager add;
')
define(`binder_call', `
allow $1 $2:binder { call transfer };
allow $2 $1:binder transfer;
allow $1 $2:fd use;
')
define(`hal_client_domain', `
typeattribute $1 halclientdomain;
typeattribute $1 $2_client;
')
