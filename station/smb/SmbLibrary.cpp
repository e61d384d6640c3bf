#include "SmbLibrary.h"

#include "SmbFunctions.h"

#include <QTemporaryFile>

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <new>
#include <utility>

#include <pthread.h>

namespace {
// "dos charset": each log-on writes to it, and for any but this one all threads would share one descriptor of iconv().
// "lock directory": a folder that takes no files, so that there is no cache file either.
constexpr auto configuration = R"([global]
    client min protocol = SMB2_02
    client max protocol = SMB3
    disable netbios = yes
    name resolve order = host
    unix charset = UTF-8
    dos charset = ASCII
    lock directory = /proc/self
)";

// How the library wants locks and thread-local values; see smbc_thread_impl() in libsmbclient.h.
int createMutex(const char *, void **mutex, const char *)
{
    *mutex = new (std::nothrow) std::mutex;
    return *mutex ? 0 : ENOMEM;
}

void destroyMutex(void *mutex, const char *)
{
    delete static_cast<std::mutex *>(mutex);
}

int lockMutex(void *mutex, int type, const char *)
{
    constexpr int lock = 1;
    if (type == lock)
        static_cast<std::mutex *>(mutex)->lock();
    else
        static_cast<std::mutex *>(mutex)->unlock();
    return 0;
}

int createTls(const char *, void **key, const char *)
{
    const auto made = new (std::nothrow) pthread_key_t;
    *key = made;
    return made ? pthread_key_create(made, nullptr) : ENOMEM;
}

void destroyTls(void **key, const char *)
{
    const auto made = static_cast<pthread_key_t *>(*key);
    pthread_key_delete(*made);
    delete made;
    *key = nullptr;
}

int setTls(void *key, const void *value, const char *)
{
    return pthread_setspecific(*static_cast<pthread_key_t *>(key), value);
}

void *getTls(void *key, const char *)
{
    return key ? pthread_getspecific(*static_cast<pthread_key_t *>(key)) : nullptr; // asked before the key was made
}

struct ThreadFunctions
{
    int (*createMutex)(const char *name, void **mutex, const char *place);
    void (*destroyMutex)(void *mutex, const char *place);
    int (*lockMutex)(void *mutex, int type, const char *place);
    int (*createTls)(const char *name, void **key, const char *place);
    void (*destroyTls)(void **key, const char *place);
    int (*setTls)(void *key, const void *value, const char *place);
    void *(*getTls)(void *key, const char *place);
};

/// False where the library offers no way to it. Its own call for that, smbc_thread_posix(), is not exported by every
/// build; the one below it is.
bool makeSafeForThreads()
{
    if (void *const posix = smbFunctions().find("smbc_thread_posix")) {
        reinterpret_cast<void (*)()>(posix)();
        return true;
    }
    static const ThreadFunctions functions{createMutex, destroyMutex, lockMutex, createTls, destroyTls, setTls, getTls};
    void *const set = smbFunctions().find("smb_thread_set_functions");
    return set && reinterpret_cast<int (*)(const ThreadFunctions *)>(set)(&functions) == 0;
}

void configure(SMBCCTX *context)
{
    QTemporaryFile file;
    if (!file.open() || file.write(configuration) < 0 || !file.flush())
        return;
    smbFunctions().setConfiguration(context, file.fileName().toLocal8Bit().constData());
}

struct Turns
{
    std::mutex mutex;
    std::condition_variable changed;
    bool isSafe = false; // for threads
    bool wasUsed = false; // a log-on was through
    bool isTaken = false;
};

/// Never destroyed: a thread may wait for a silent server when the process ends.
Turns &turns()
{
    static auto *const instance = new Turns;
    return *instance;
}
} // namespace

void SmbLibrary::prepare()
{
    static std::once_flag once;
    std::call_once(once, [] {
        const bool isSafe = makeSafeForThreads();
        // Kept for good: when its last context ends, the library drops the configuration, used by others or not.
        static SMBCCTX *keeper = nullptr;
        keeper = smbFunctions().newContext();
        if (!keeper)
            throw std::bad_alloc();
        smbFunctions().setLogCallback(keeper, nullptr, [](void *, int, const char *) {});
        configure(keeper);
        if (!smbFunctions().initContext(keeper))
            throw std::bad_alloc();
        const std::lock_guard lock(turns().mutex);
        turns().isSafe = isSafe;
    });
}

std::mutex &SmbLibrary::creation()
{
    static auto *const mutex = new std::mutex; // never destroyed, as the turns
    return *mutex;
}

bool SmbLibrary::wasUsed()
{
    const std::lock_guard lock(turns().mutex);
    return turns().isSafe && turns().wasUsed;
}

SmbLibrary::Turn::Turn()
{
    constexpr std::chrono::seconds patience(2);
    Turns &all = turns();
    std::unique_lock lock(all.mutex);
    const auto isFree = [&all] { return !all.isTaken || (all.isSafe && all.wasUsed); };
    if (all.isSafe)
        all.changed.wait_for(lock, patience, isFree);
    else
        all.changed.wait(lock, isFree);
    m_isMine = !std::exchange(all.isTaken, true);
}

SmbLibrary::Turn::~Turn()
{
    if (!m_isMine)
        return;
    const std::lock_guard lock(turns().mutex);
    turns().isTaken = false;
    turns().changed.notify_all();
}

void SmbLibrary::Turn::serverAnswered()
{
    const std::lock_guard lock(turns().mutex);
    turns().wasUsed = true;
    turns().changed.notify_all();
}
