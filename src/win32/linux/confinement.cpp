#include "win32/linux/confinement.h"

#include <cerrno>
#include <cstdint>
#include <memory>
#include <sched.h>
#include <seccomp.h>
#include <sys/prctl.h>
#include <sys/socket.h>

namespace {

struct Releaser {
    void operator()(void* filter) const { seccomp_release(filter); }
};
using Filter = std::unique_ptr<void, Releaser>;

// A name that this machine's processor or the library does not know is passed over.
constexpr const char* kRefused[] = {
    // programs
    "execve", "execveat",
    // other processes
    "ptrace", "process_vm_readv", "process_vm_writev", "process_madvise", "pidfd_getfd", "kcmp",
    // namespaces and mounts
    "unshare", "setns", "mount", "umount2", "pivot_root", "chroot", "open_tree", "move_mount", "fsopen",
    "fsconfig", "fsmount", "fspick", "mount_setattr", "open_by_handle_at",
    // the kernel's own matters, where most of its faults have been
    "bpf", "perf_event_open", "userfaultfd", "io_uring_setup", "io_uring_enter", "io_uring_register",
    "add_key", "request_key", "keyctl", "init_module", "finit_module", "delete_module", "kexec_load",
    "kexec_file_load", "fanotify_init", "modify_ldt", "iopl", "ioperm", "syslog", "acct", "quotactl",
    "swapon", "swapoff", "reboot", "settimeofday", "clock_settime", "adjtimex", "clock_adjtime"};

bool Refuse(void* filter, const char* name) {
    const int number = seccomp_syscall_resolve_name(name);
    return number == __NR_SCMP_ERROR || seccomp_rule_add(filter, SCMP_ACT_ERRNO(EPERM), number, 0) == 0;
}

bool RefuseAll(void* filter) {
    for (const char* name : kRefused)
        if (!Refuse(filter, name))
            return false;
    return true;
}

// Sockets other than those of this machine: of its programs, and of the kernel's news about devices.
bool RefuseNetworks(void* filter) {
    const auto refuse = [filter](scmp_compare comparison, int domain) {
        return seccomp_rule_add(filter, SCMP_ACT_ERRNO(EAFNOSUPPORT), SCMP_SYS(socket), 1,
                                SCMP_A0_32(comparison, static_cast<std::uint32_t>(domain))) == 0;
    };
    bool done = refuse(SCMP_CMP_LT, AF_UNIX) && refuse(SCMP_CMP_GT, AF_NETLINK);
    for (int domain = AF_UNIX + 1; done && domain < AF_NETLINK; ++domain)
        done = refuse(SCMP_CMP_EQ, domain);
    return done;
}

// clone3 keeps its flags where a filter cannot look: the C library takes clone where there is no other.
bool RefuseNamespaces(void* filter) {
    return seccomp_rule_add(filter, SCMP_ACT_ERRNO(ENOSYS), SCMP_SYS(clone3), 0) == 0 &&
           seccomp_rule_add(filter, SCMP_ACT_ERRNO(EPERM), SCMP_SYS(clone), 1,
                            SCMP_A0(SCMP_CMP_MASKED_EQ, CLONE_NEWUSER, CLONE_NEWUSER)) == 0;
}

} // namespace

void GiveUpNewPrivileges() {
    prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0);
}

// Without the processor's slow mode that older kernels bind to a filter: nothing here keeps secrets from
// itself.
bool Confine() {
    const Filter filter(seccomp_init(SCMP_ACT_ALLOW));
    return filter != nullptr && seccomp_attr_set(filter.get(), SCMP_FLTATR_CTL_TSYNC, 1) == 0 &&
           seccomp_attr_set(filter.get(), SCMP_FLTATR_CTL_SSB, 1) == 0 && RefuseAll(filter.get()) &&
           RefuseNetworks(filter.get()) && RefuseNamespaces(filter.get()) && seccomp_load(filter.get()) == 0;
}
