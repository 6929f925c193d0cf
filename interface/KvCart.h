#ifndef KVCART_INTERFACE_KVCART_H
#define KVCART_INTERFACE_KVCART_H

// The flat C interface of the library.

#ifdef __cplusplus
extern "C" {
#endif

// Reads the catalogues once per call: ellipsoid.gxr, map_projection.gxr and the
// state plane files from systemDirectory, custom_ellipsoid.gxr and
// custom_projection.gxr from userDirectory. Both are prefixes to which the file
// names are appended, so they end with "/". Changed custom catalogues are
// written back to userDirectory at process exit.
void CARTSETUPLINUX(const char* systemDirectory, const char* userDirectory);

// Writes the changed custom catalogues now rather than at exit. Returns 0 when
// everything of the session is saved, -1 otherwise (CARTGETERRORLINUX tells why).
int CARTWRITEBACKLINUX(void);

// The catalogue's problems since the last CARTSETUPLINUX, one "file:line: what"
// per line (a user file that did not read cleanly is named here; it is never
// written over), and any failure of a write-back. Copied like every string
// result: when its length len exceeds size, *status = len and buffer is not
// touched; otherwise the text and its terminator are copied (buffer holds
// size + 1 bytes) and *status = 0.
void CARTGETERRORLINUX(char* buffer, int size, int* status);

// The coordinate system text (WKT or a catalogue name) as a PROJ.4 definition.
// datumShift: count values (dx, dy, dz in metres, rx, ry, rz in arc-seconds,
// scale in ppm) that replace the system's own datum shift when count >= 1; may
// be null. The result is copied like every string result (buffer holds size + 1
// bytes; *status = length when it does not fit). *status = -1 for the generic
// name "UTM", which names no zone.
void C_KVC_CONVERT2PROJ4(const char* text, double* datumShift, int count, char* buffer, int size, int* status);

#ifdef __cplusplus
}
#endif

#endif
