#pragma once
// Splits RTF bytes into groups, control words, control symbols and text. It
// never reads past the end and never fails: damage is counted and the
// reader decides what to make of it.
//
// Thread contract: any thread; one lexer per input.

#include <QByteArray>

namespace mirabend {

struct RtfToken {
    enum class Kind { GroupStart, GroupEnd, Word, Symbol, Text, HexByte, End };
    Kind kind = Kind::End;
    QByteArray word; // the control word's letters, or the text run
    bool hasParam = false;
    int param = 0;          // clamped into int range
    char symbol = 0;        // the control symbol's character
    unsigned char byte = 0; // the value of \'hh
};

class RtfLexer {
public:
    explicit RtfLexer(const QByteArray& input)
        : m_in(input) {}
    RtfToken next();
    // Pieces that could not be read (a broken \'hh escape, an overlong word).
    int damage() const { return m_damage; }
    int position() const { return m_pos; }

private:
    RtfToken controlWord();
    const QByteArray& m_in;
    int m_pos = 0;
    int m_damage = 0;
};

} // namespace mirabend
