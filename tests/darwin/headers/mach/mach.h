// tests/darwin/headers/mach/mach.h: the host port and the virtual memory's statistics.
#pragma once

#include "scripted.h"

typedef int kern_return_t;
typedef unsigned int natural_t;
typedef int integer_t;
typedef natural_t mach_port_t;
typedef natural_t mach_msg_type_number_t;
typedef mach_port_t host_t;
typedef integer_t* host_info_t;
typedef integer_t host_flavor_t;
typedef unsigned long vm_size_t;

struct vm_statistics {
  natural_t free_count;
  natural_t active_count;
  natural_t inactive_count;
  natural_t wire_count;
  natural_t zero_fill_count;
  natural_t reactivations;
  natural_t pageins;
  natural_t pageouts;
  natural_t faults;
  natural_t cow_faults;
  natural_t lookups;
  natural_t hits;
  natural_t purgeable_count;
  natural_t purges;
  natural_t speculative_count;
};
typedef struct vm_statistics vm_statistics_data_t;

#define KERN_SUCCESS 0
#define KERN_INVALID_ARGUMENT 4
#define KERN_FAILURE 5
#define HOST_VM_INFO 2
#define HOST_VM_INFO_COUNT \
  ((mach_msg_type_number_t)(sizeof(vm_statistics_data_t) / sizeof(integer_t)))

#ifdef __cplusplus
extern "C" {
#endif
extern mach_port_t mach_task_self_ ORB_SCRIPTED(mach_task_self_);
#define mach_task_self() mach_task_self_
mach_port_t mach_host_self(void) ORB_SCRIPTED(mach_host_self);
kern_return_t mach_port_deallocate(mach_port_t task, mach_port_t port)
    ORB_SCRIPTED(mach_port_deallocate);
kern_return_t host_page_size(host_t host, vm_size_t* size) ORB_SCRIPTED(host_page_size);
kern_return_t host_statistics(host_t host, host_flavor_t flavor, host_info_t statistics,
                              mach_msg_type_number_t* count) ORB_SCRIPTED(host_statistics);
#ifdef __cplusplus
}
#endif
