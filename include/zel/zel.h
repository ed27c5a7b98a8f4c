// Everything a class module needs: the value encodings and record layouts,
// the descriptor builders and registration, the runtime services, memory,
// wrappers and clones, errors, the byte buffer, wide strings and text
// functions, the hash tables, the pointer list and the variant node; and
// ZEL_LIBRARY, the one line that makes a set of class modules a library.
#pragma once

#include <zel/zel_types.h>
#include <zel/values.h>
#include <zel/class_table.h>
#include <zel/registry.h>
#include <zel/loader.h>
#include <zel/services.h>
#include <zel/stream_calls.h>
#include <zel/memory.h>
#include <zel/errors.h>
#include <zel/os.h>
#include <zel/minimem.h>
#include <zel/mstring.h>
#include <zel/textfuncs.h>
#include <zel/hashkv.h>
#include <zel/ptrlist.h>
#include <zel/node.h>
#include <zel/converters.h>
#include <zel/no_memory.h>
#include <zel/version.h>
#include <zel/library.h>
