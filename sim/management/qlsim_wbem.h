/* SPDX-License-Identifier: Apache-2.0 */
/* What a test asks the management stand-in, qlsim_wbem.dll. The DLL keeps these records while it is loaded: a test
 * loads it with LoadLibrary before it lets the code under test query, and frees it afterwards. */
#ifndef QLSIM_WBEM_H
#define QLSIM_WBEM_H

#ifdef __cplusplus
extern "C" {
#endif

/* Objects that callers still hold: locator, service, enumerator, object. */
int QlsimWbemLiveObjects(void);

/* The objects in the order in which their last reference went: "object enumerator service locator" for a caller that
 * releases in the reverse order of making. Both logs are separated by blanks, keep the newest 64 entries, and return
 * the length of the whole text; the buffer gets what fits, always terminated. */
int QlsimWbemReleaseLog(char* buffer, int size);

/* The steps that were called, with their arguments where they vary, for example
 * "create connect blanket(10,0,3,3,0) query(0x20) next(0xffffffff,1) get": the blanket's authentication and
 * authorization services, authentication and impersonation levels and capabilities; the query's flags; the timeout and
 * count of the fetch. */
int QlsimWbemCallLog(char* buffer, int size);

void QlsimWbemClearLogs(void);

#ifdef __cplusplus
}
#endif

#endif
