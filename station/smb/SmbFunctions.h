#pragma once

#include <libsmbclient.h>

/// The functions of libsmbclient that are used here. The library comes with some hundred others; to load them with the
/// program takes most of a station's start, and many stations know no NAS server. So it is loaded at the first use.
struct SmbFunctions
{
    decltype(&smbc_new_context) newContext = nullptr;
    decltype(&smbc_init_context) initContext = nullptr;
    decltype(&smbc_free_context) freeContext = nullptr;
    decltype(&smbc_setConfiguration) setConfiguration = nullptr;
    decltype(&smbc_setLogCallback) setLogCallback = nullptr;
    decltype(&smbc_setTimeout) setTimeout = nullptr;
    decltype(&smbc_getOptionUserData) getOptionUserData = nullptr;
    decltype(&smbc_setOptionUserData) setOptionUserData = nullptr;
    decltype(&smbc_setFunctionAuthDataWithContext) setFunctionAuthDataWithContext = nullptr;
    decltype(&smbc_setOptionUseKerberos) setOptionUseKerberos = nullptr;
    decltype(&smbc_setOptionUseCCache) setOptionUseCCache = nullptr;
    decltype(&smbc_setOptionNoAutoAnonymousLogin) setOptionNoAutoAnonymousLogin = nullptr;
    decltype(&smbc_getFunctionOpen) getFunctionOpen = nullptr;
    decltype(&smbc_getFunctionWrite) getFunctionWrite = nullptr;
    decltype(&smbc_getFunctionClose) getFunctionClose = nullptr;
    decltype(&smbc_getFunctionUnlink) getFunctionUnlink = nullptr;
    decltype(&smbc_getFunctionStat) getFunctionStat = nullptr;
    decltype(&smbc_getFunctionStatVFS) getFunctionStatVFS = nullptr;
    decltype(&smbc_getFunctionOpendir) getFunctionOpendir = nullptr;
    decltype(&smbc_getFunctionReaddir) getFunctionReaddir = nullptr;
    decltype(&smbc_getFunctionReaddirPlus) getFunctionReaddirPlus = nullptr;
    decltype(&smbc_getFunctionClosedir) getFunctionClosedir = nullptr;

    /// A function that not every build of the library exports; null where this one does not.
    void *find(const char *name) const;

    void *library = nullptr; ///< of dlopen(), never closed
};

/// Loads the library at the first call in the process. From any thread. Throws std::runtime_error where it cannot be
/// loaded, and says so in the station's log.
const SmbFunctions &smbFunctions();
