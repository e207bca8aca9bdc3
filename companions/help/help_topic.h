// The manual as its viewer reads it: HTML whose topics are parted by comments, each with an anchor
// at its beginning. Platform-free.
#pragma once

#include <algorithm>
#include <cstddef>
#include <string_view>

namespace help {

using Text = std::u16string_view;

constexpr Text kTopicMark = u"<!-- PegHelp -->";
constexpr Text kAnchor = u"<a name=\"";
constexpr Text kLink = u"<a href=\"";
constexpr Text kPicture = u"<img src=\"";
constexpr char16_t kBullet = u'\x2022';

struct Address {
    Text file;
    Text anchor;  // empty: the whole file
};
// Takes "file#anchor" apart.
inline Address ParseAddress(Text address) {
    const std::size_t hash = address.find(u'#');
    return hash == Text::npos ? Address{address, {}}
                              : Address{address.substr(0, hash), address.substr(hash + 1)};
}

// What stands between `begin` and the next `end`; empty when there is no such end.
inline Text Until(Text text, std::size_t begin, Text end) {
    const std::size_t found = text.find(end, begin);
    return found == Text::npos ? Text() : text.substr(begin, found - begin);
}

// The topic whose anchor it is, without its mark; empty when no topic has it.
inline Text FindTopic(Text file, Text anchor) {
    for (std::size_t mark = file.find(kTopicMark); mark != Text::npos;) {
        const std::size_t begin = mark + kTopicMark.size();
        mark = file.find(kTopicMark, begin);
        const Text topic = file.substr(begin, std::min(mark, file.size()) - begin);
        const std::size_t name = topic.find(kAnchor);
        if (name != Text::npos && Until(topic, name + kAnchor.size(), u"\"") == anchor) {
            return topic;
        }
    }
    return {};
}

struct Link {
    Text address;
    Text text;
};
// The next link from `at` on, which moves behind it. False when there is none.
inline bool NextLink(Text html, std::size_t& at, Link& link) {
    const std::size_t found = html.find(kLink, at);
    if (found == Text::npos) {
        return false;
    }
    const std::size_t begin = found + kLink.size();
    link.address = Until(html, begin, u"\"");
    const std::size_t text = begin + link.address.size() + 2;  // quote and bracket
    link.text = Until(html, text, u"</a>");
    at = text + link.text.size();
    return !link.address.empty() && !link.text.empty();
}

// The file of the topic's picture; empty when it has none.
inline Text PictureOf(Text html) {
    const std::size_t found = html.find(kPicture);
    return found == Text::npos ? Text() : Until(html, found + kPicture.size(), u"\"");
}

// A topic as lines of plain text in a buffer of fixed size; what does not fit is cut.
class PlainText {
public:
    PlainText(char16_t* buffer, std::size_t units) : buffer_(buffer), units_(units) {}
    // Returns the length; the text is terminated.
    std::size_t Write(Text html) {
        for (std::size_t i = 0; i < html.size();) {
            if (html[i] == u'<') {
                const Text tag = Until(html, i + 1, u">");
                OnTag(tag);
                i += tag.size() + 2;
            } else {
                i += OnText(html.substr(i));
            }
        }
        buffer_[length_] = 0;
        return length_;
    }

private:
    void OnTag(Text tag) {
        if (tag == u"p" || tag == u"h1" || tag == u"h2" || tag == u"ul") {
            Break(2);
        } else if (tag == u"li") {
            Break(1);
            Put(kBullet);
            has_space_ = true;
        } else if (tag == u"br") {
            Break(1);
        }
    }

    // Line ends in the file are blanks. Returns how many units were taken.
    std::size_t OnText(Text text) {
        struct Entity {
            Text name;
            char16_t unit;
        };
        constexpr Entity kEntities[] = {
            {u"&lt;", u'<'}, {u"&gt;", u'>'}, {u"&quot;", u'"'}, {u"&amp;", u'&'}};
        for (const Entity& entity : kEntities) {
            if (text.substr(0, entity.name.size()) == entity.name) {
                PutWord(entity.unit);
                return entity.name.size();
            }
        }
        if (text[0] == u' ' || text[0] == u'\n' || text[0] == u'\r') {
            has_space_ = true;
        } else {
            PutWord(text[0]);
        }
        return 1;
    }

    // Line ends are written before the next word, so that none stand at the end.
    void Break(int lines) {
        breaks_ = std::max(breaks_, lines);
        has_space_ = false;
    }
    void PutWord(char16_t unit) {
        if (has_space_ && breaks_ == 0 && length_ > 0) {
            Put(u' ');
        }
        Put(unit);
        has_space_ = false;
    }
    void Put(char16_t unit) {
        for (; breaks_ > 0; --breaks_) {
            if (length_ > 0) {
                Add(u'\r');
                Add(u'\n');
            }
        }
        Add(unit);
    }
    void Add(char16_t unit) {
        if (length_ + 1 < units_) {
            buffer_[length_++] = unit;
        }
    }

    char16_t* buffer_;
    std::size_t units_;
    std::size_t length_ = 0;
    int breaks_ = 0;
    bool has_space_ = false;
};

// What the viewer shows of a page's body: the title in the head is no text of it.
inline Text BodyOf(Text file) {
    constexpr Text kBody = u"<body>";
    const std::size_t found = file.find(kBody);
    return found == Text::npos ? file : file.substr(found + kBody.size());
}

}  // namespace help
