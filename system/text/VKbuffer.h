#pragma once

/// A growing text buffer on malloc()ed memory. Make it with InitVdkBuffer, free it with EmptyVdkBuffer; copying the
/// record copies the pointer only. One thread at a time.
struct VDK_BUFFER
{
    char* data;   ///< zero-terminated text, null while empty
    int capacity; ///< bytes that data points to
    int used;     ///< characters in data, without the zero
};

/// Brings a fresh record into its first state; with a size above 0 it also allocates that many bytes, cleared. Returns
/// 0, or -1 when memory is out (the buffer is then empty).
int InitVdkBuffer(VDK_BUFFER* buffer, int size);

/// Clears the text and keeps the memory.
void ResetVdkBuffer(VDK_BUFFER* buffer);

/// Frees the memory; the buffer is empty and may be used again.
void EmptyVdkBuffer(VDK_BUFFER* buffer);

/// Appends a text, or at most `length` bytes of it: data ends at its first zero byte. Null or a length of 0 appends
/// nothing. Returns 0, or -1, with the buffer as it was, when memory is out or the text would pass 2 GiB.
int AppendDataToVdkBuffer(VDK_BUFFER* buffer, const char* text);
int AppendDataToVdkBufferWithSize(VDK_BUFFER* buffer, const char* text, int length);
