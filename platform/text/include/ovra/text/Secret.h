#ifndef OVRA_TEXT_SECRET_H
#define OVRA_TEXT_SECRET_H

#include <cstring>
#include <memory>
#include <string>
#include <string_view>

namespace ovra {

/** Overwrites a text that was a secret, and empties it. */
template <class Text>
void wipe(Text& secret)
{
    secret.resize(secret.capacity()); // allocates nothing
    explicit_bzero(secret.data(), secret.size());
    secret.clear();
}

/** Overwrites memory before it is given back. */
template <class T>
struct WipingAllocator : std::allocator<T>
{
    template <class U>
    struct rebind
    {
        using other = WipingAllocator<U>;
    };

    void deallocate(T* memory, std::size_t count)
    {
        explicit_bzero(memory, count * sizeof(T));
        std::allocator<T>::deallocate(memory, count);
    }
};

/** A text that leaves nothing of itself in memory: not when it outgrows its place, and not when it goes. */
class SecretText : public std::basic_string<char, std::char_traits<char>, WipingAllocator<char>>
{
public:
    SecretText() = default;
    SecretText(std::string_view text) : basic_string(text) {}
    SecretText(const std::string& text) : SecretText(std::string_view(text)) {}
    SecretText(const char* text) : SecretText(std::string_view(text)) {}
    SecretText(const SecretText&) = default;
    SecretText(SecretText&&) = default;
    SecretText& operator=(const SecretText&) = default;
    SecretText& operator=(SecretText&&) = default;
    ~SecretText() { wipe(*this); } // a short text stands in the object itself
};

} // namespace ovra

#endif
