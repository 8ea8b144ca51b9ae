/* libsensorsim: the simulated device world behind every stand-in library.
 *
 * One world per process, shared by all stand-ins. Tests and host developers
 * steer it through these functions; the world's format is described in
 * sim/README.md. Buffer protocol of the getters: the result is the length
 * needed including the terminating zero; the text is copied only when buffer
 * is not null (cut to length - 1 characters and terminated). */
#ifndef SENSORSIM_H
#define SENSORSIM_H

#include <stdint.h>

#if defined(__GNUC__)
#define SENSORSIM_API __attribute__((visibility("default")))
#else
#define SENSORSIM_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* Replaces the whole world: 0 on success, negative (leaving the world as it
 * was) on a bad scenario. */
SENSORSIM_API int32_t SimLoadScenario(char const* json);
SENSORSIM_API uint32_t SimGetWorld(char* buffer, uint32_t length);

/* From now on `function` returns `code` without doing its work. */
SENSORSIM_API void SimInjectResult(char const* function, int32_t code);
SENSORSIM_API void SimClearInjections(void);

/* JSON array of the device calls since the last clear:
 * [{"function": name, "args": [...]}, ...] */
SENSORSIM_API uint32_t SimGetJournal(char* buffer, uint32_t length);
SENSORSIM_API void SimClearJournal(void);

#ifdef __cplusplus
}
#endif

#endif
