#ifndef TESSEL_PAGES_H
#define TESSEL_PAGES_H

/** @file
 * Lists that are read a page at a time, for range-for. Header only. */

#include <cstddef>
#include <functional>
#include <iterator>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace ovra {
namespace tessel {

/** Records of a page, unless another number is asked for. */
constexpr unsigned long RECORDS_OF_A_PAGE = 100;

/**
 * A list on the array that is read a page at a time while it is walked over.
 *
 * No object is handed out twice, and the walk ends whatever the array makes of a range: the next page begins
 * behind the records that came (some arrays count the end of a range in, some do not), a page that brings
 * nothing new is the last, and a short page is the last only where a full one has shown that the array gives
 * pages of that size. An object that comes or goes while the list is read may be missed.
 *
 * Each page costs one request, and one more for each object in it. begin() and the increment of an iterator
 * throw as the handler's operation does. An iterator reads on its own: begin() starts anew, and copies of an
 * iterator move together.
 */
template <typename Record>
class Pages
{
private:
    struct Walk;

public:
    /** Reads the page that begins at an index; may return more or fewer records than the number wanted. */
    using Reader = std::function<std::vector<Record>(unsigned long start, unsigned long count)>;

    /** Walks over the records once. */
    class iterator
    {
    public:
        using iterator_category = std::input_iterator_tag; ///< one pass
        using value_type = Record;                         ///< the record
        using difference_type = std::ptrdiff_t;            ///< unused
        using pointer = const Record*;                     ///< valid until the increment
        using reference = const Record&;                   ///< valid until the increment

        /** The end of every list. */
        iterator() = default;
        /** Reads the first page. @param pages the list. */
        explicit iterator(const Pages& pages) : m_walk(std::make_shared<Walk>(pages)) { settle(); }

        /** @return the record here. */
        reference operator*() const { return m_walk->page[m_walk->next]; }
        /** @return the record here. */
        pointer operator->() const { return &**this; }
        /** Goes on to the next record, and reads a page where that needs one. @return this. */
        iterator& operator++()
        {
            ++m_walk->next;
            settle();
            return *this;
        }
        /** Goes on to the next record. @return the one before, for *i++ alone. */
        std::unique_ptr<Record> operator++(int)
        {
            std::unique_ptr<Record> here(new Record(**this));
            ++*this;
            return here;
        }
        /** @param a,b two iterators. @return whether both are at the end, or the same walk. */
        friend bool operator==(const iterator& a, const iterator& b) { return a.m_walk == b.m_walk; }
        /** @param a,b two iterators. @return the opposite. */
        friend bool operator!=(const iterator& a, const iterator& b) { return !(a == b); }

    private:
        void settle()
        {
            if (m_walk->next == m_walk->page.size() && !m_walk->turn()) {
                m_walk.reset();
            }
        }

        std::shared_ptr<Walk> m_walk;
    };

    /**
     * A list that nothing has been read of yet.
     * @param reader reads a page; used as long as this object and its iterators live.
     * @param pageSize records of a page; 0 is taken for 1.
     */
    Pages(Reader reader, unsigned long pageSize)
        : m_read(std::move(reader)), m_pageSize(pageSize == 0 ? 1 : pageSize)
    {
    }

    /** Reads the first page. @return the first record. */
    iterator begin() const { return iterator(*this); }
    /** @return what an iterator is behind the last record. */
    iterator end() const { return iterator(); }
    /** Reads everything. @return the records in the array's order. */
    std::vector<Record> all() const { return std::vector<Record>(begin(), end()); }

private:
    struct Walk
    {
        explicit Walk(const Pages& pages) : read(pages.m_read), count(pages.m_pageSize) {}

        /** Reads on to a page that holds something new. @return false when there is none. */
        bool turn()
        {
            if (ended) {
                return false;
            }
            std::vector<Record> came = read(start, count);
            start += came.size();
            sawFullPage = sawFullPage || came.size() >= count;
            ended = came.size() < count && sawFullPage;
            page.clear();
            next = 0;
            for (Record& record : came) {
                if (known.insert(record.ID).second) {
                    page.push_back(record);
                }
            }
            return !page.empty();
        }

        Reader read;
        unsigned long count;
        unsigned long start = 0;
        bool sawFullPage = false;
        bool ended = false;
        std::set<std::string> known;
        std::vector<Record> page;
        std::size_t next = 0;
    };

    Reader m_read;
    unsigned long m_pageSize;
};

} // namespace tessel
} // namespace ovra

#endif
