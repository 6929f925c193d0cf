#!/bin/sh
# The shared library exports every function its C header declares, and nothing
# but those and the library's classes (CKv..., CString, CMatrix).
# usage: check_exports.sh libkvcart.so interface/KvCart.h
set -eu
library=$1
header=$2
exports=$(nm -D --defined-only "$library" | awk '{print $3}' | sed 's/@.*//')
status=0
for name in $(grep -oE '\b(C_KV[A-Z0-9_]+|S_[A-Z0-9_]+|NewKvProjection|DeleteKvProjection|CART[A-Z]+)\(' "$header" | tr -d '(' | sort -u); do
    if ! printf '%s\n' "$exports" | grep -qx "$name"; then
        echo "not exported: $name"
        status=1
    fi
done
stray=$(printf '%s\n' "$exports" | c++filt | grep -vE '^(C_KV|S_|NewKvProjection$|DeleteKvProjection$|CART|KVCART_0$|CKv|CString::|CMatrix::|(vtable|typeinfo|typeinfo name) for (CKv|CMatrix))' || true)
if [ -n "$stray" ]; then
    echo "exported but not public:"
    printf '%s\n' "$stray"
    status=1
fi
count=$(printf '%s\n' "$exports" | grep -cE '^(C_KV|S_)')
[ "$count" -ge 50 ] || { echo "only $count C functions exported"; status=1; }
exit $status
