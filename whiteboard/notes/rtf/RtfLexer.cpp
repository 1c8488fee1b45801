#include "whiteboard/notes/rtf/RtfLexer.h"

#include <climits>

namespace mirabend {
namespace {

constexpr int kMaxWordLength = 32;
constexpr int kMaxParamDigits = 10;

bool isLetter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}
bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

int hexValue(char c) {
    if (isDigit(c))
        return c - '0';
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    if (c >= 'A' && c <= 'F')
        return c - 'A' + 10;
    return -1;
}

} // namespace

RtfToken RtfLexer::next() {
    RtfToken token;
    const int size = m_in.size();
    while (m_pos < size) {
        const char c = m_in.at(m_pos);
        if (c == '{') {
            ++m_pos;
            token.kind = RtfToken::Kind::GroupStart;
            return token;
        }
        if (c == '}') {
            ++m_pos;
            token.kind = RtfToken::Kind::GroupEnd;
            return token;
        }
        if (c == '\\')
            return controlWord();
        if (c == '\r' || c == '\n' || c == '\0') {
            ++m_pos;
            continue;
        }
        const int start = m_pos;
        while (m_pos < size) {
            const char t = m_in.at(m_pos);
            if (t == '{' || t == '}' || t == '\\' || t == '\r' || t == '\n' || t == '\0')
                break;
            ++m_pos;
        }
        token.kind = RtfToken::Kind::Text;
        token.word = m_in.mid(start, m_pos - start);
        return token;
    }
    token.kind = RtfToken::Kind::End;
    return token;
}

RtfToken RtfLexer::controlWord() {
    RtfToken token;
    const int size = m_in.size();
    ++m_pos; // the backslash
    if (m_pos >= size) {
        ++m_damage;
        token.kind = RtfToken::Kind::End;
        return token;
    }
    const char c = m_in.at(m_pos);
    if (!isLetter(c)) {
        ++m_pos;
        if (c == '\'') {
            const int high = m_pos < size ? hexValue(m_in.at(m_pos)) : -1;
            const int low = m_pos + 1 < size ? hexValue(m_in.at(m_pos + 1)) : -1;
            if (high < 0 || low < 0) {
                ++m_damage;
                token.kind = RtfToken::Kind::Symbol;
                token.symbol = '?';
                return token;
            }
            m_pos += 2;
            token.kind = RtfToken::Kind::HexByte;
            token.byte = static_cast<unsigned char>(high * 16 + low);
            return token;
        }
        // A backslash before a line end is a paragraph mark in old writers.
        token.kind = RtfToken::Kind::Symbol;
        token.symbol = (c == '\r' || c == '\n') ? '\n' : c;
        return token;
    }
    const int start = m_pos;
    while (m_pos < size && isLetter(m_in.at(m_pos)))
        ++m_pos;
    if (m_pos - start > kMaxWordLength)
        ++m_damage;
    token.kind = RtfToken::Kind::Word;
    token.word = m_in.mid(start, std::min(m_pos - start, kMaxWordLength));
    bool negative = false;
    if (m_pos < size && m_in.at(m_pos) == '-' && m_pos + 1 < size && isDigit(m_in.at(m_pos + 1))) {
        negative = true;
        ++m_pos;
    }
    if (m_pos < size && isDigit(m_in.at(m_pos))) {
        long long value = 0;
        int digits = 0;
        while (m_pos < size && isDigit(m_in.at(m_pos))) {
            if (digits < kMaxParamDigits)
                value = value * 10 + (m_in.at(m_pos) - '0');
            ++digits;
            ++m_pos;
        }
        if (negative)
            value = -value;
        token.hasParam = true;
        token.param = static_cast<int>(std::max<long long>(INT_MIN, std::min<long long>(INT_MAX, value)));
    }
    // One space ends a control word and belongs to it.
    if (m_pos < size && m_in.at(m_pos) == ' ')
        ++m_pos;
    // Binary data follows \binN: step over it whole.
    if (token.word == "bin" && token.hasParam && token.param > 0)
        m_pos += std::min(token.param, size - m_pos);
    return token;
}

} // namespace mirabend
