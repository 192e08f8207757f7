// SPDX-License-Identifier: GPL-3.0-or-later
//
// The inline Markdown parse against the rules of CommonMark (with
// strikethrough). Results are written as Test::describeRuns() writes them.

#include "StoreFixture.h"
#include "TestEnvironment.h"

#include "store/MarkdownText.h"

using namespace Vesko;
using namespace Qt::StringLiterals;

class MarkdownTextTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void parse_data();
    void parse();
    void strippedTextKeepsOnlyInputCharacters();
};

void MarkdownTextTest::parse_data()
{
    QTest::addColumn<QString>("source");
    QTest::addColumn<QString>("expected");
    // Emphasis and strong emphasis.
    QTest::newRow("emphasis") << "*foo bar*" << u"{E:foo bar}"_s;
    QTest::newRow("not left-flanking") << "a * foo bar*" << u"a * foo bar*"_s;
    QTest::newRow("intraword star") << "foo*bar*" << u"foo{E:bar}"_s;
    QTest::newRow("intraword underscore") << "foo_bar_" << u"foo_bar_"_s;
    QTest::newRow("underscore inside") << "_foo_bar_" << u"{E:foo_bar}"_s;
    QTest::newRow("snake case stays") << "snake_case_name" << u"snake_case_name"_s;
    QTest::newRow("strong") << "**foo bar**" << u"{S:foo bar}"_s;
    QTest::newRow("strong underscore") << "__foo__" << u"{S:foo}"_s;
    QTest::newRow("both") << "***strong emph***" << u"{ES:strong emph}"_s;
    QTest::newRow("strong inside emphasis") << "*foo**bar**baz*" << u"{E:foo}{ES:bar}{E:baz}"_s;
    QTest::newRow("rule of three") << "*foo**bar*" << u"{E:foo**bar}"_s;
    QTest::newRow("intraword both") << "foo***bar***baz" << u"foo{ES:bar}baz"_s;
    QTest::newRow("leftover opener") << "**foo*" << u"*{E:foo}"_s;
    QTest::newRow("leftover closer") << "*foo**" << u"{E:foo}*"_s;
    QTest::newRow("mixed characters do not match") << "*foo _bar* baz_" << u"{E:foo _bar} baz_"_s;
    QTest::newRow("nested same") << "*(*foo*)*" << u"{E:(foo)}"_s;
    QTest::newRow("quotes inside strong")
        << "**foo \"*bar*\" foo**" << u"{S:foo \"}{ES:bar}{S:\" foo}"_s;
    QTest::newRow("punctuation before") << "*$*alpha." << u"*$*alpha."_s;
    QTest::newRow("unicode punctuation flanks") << "«*quote*»" << u"«{E:quote}»"_s;
    QTest::newRow("space-surrounded star") << "a * b * c" << u"a * b * c"_s;
    QTest::newRow("unmatched") << "*foo" << u"*foo"_s;
    // Strikethrough.
    QTest::newRow("strikethrough") << "~~gone~~" << u"{X:gone}"_s;
    QTest::newRow("single tilde") << "~gone~" << u"{X:gone}"_s;
    QTest::newRow("tilde lengths differ") << "~~a~" << u"~~a~"_s;
    QTest::newRow("three tildes are text") << "~~~a~~~" << u"~~~a~~~"_s;
    // Code spans.
    QTest::newRow("code") << "`foo`" << u"{C:foo}"_s;
    QTest::newRow("code with backtick inside") << "`` foo ` bar ``" << u"{C:foo ` bar}"_s;
    QTest::newRow("code strips one space") << "` `` `" << u"{C:``}"_s;
    QTest::newRow("code strips only one") << "`  ``  `" << u"{C: `` }"_s;
    QTest::newRow("code of spaces stays") << "`  `" << u"{C:  }"_s;
    QTest::newRow("code newline becomes space") << "`a\nb`" << u"{C:a b}"_s;
    QTest::newRow("unclosed code") << "`foo" << u"`foo"_s;
    QTest::newRow("run lengths differ") << "```foo``" << u"```foo``"_s;
    QTest::newRow("code beats emphasis") << "*a `*` b*" << u"{E:a }{EC:*}{E: b}"_s;
    QTest::newRow("no escapes in code") << "`foo\\`bar`" << u"{C:foo\\}bar`"_s;
    // Escapes and references.
    QTest::newRow("escaped star") << "\\*not emphasized*" << u"*not emphasized*"_s;
    QTest::newRow("escaped backtick") << "\\`not code`" << u"`not code`"_s;
    QTest::newRow("backslash before letter") << "\\a\\\\" << u"\\a\\"_s;
    QTest::newRow("hard break") << "a\\\nb" << u"a\nb"_s;
    QTest::newRow("entities") << "&amp; &copy; &#35; &#x22; &nbsp;x &hellip; &bogus; &#0; & amp;"
                              << u"& © # \" \u00A0x … &bogus; \uFFFD & amp;"_s;
    QTest::newRow("entity needs semicolon") << "&amp &copy" << u"&amp &copy"_s;
    // Links, images and autolinks.
    QTest::newRow("link with title") << "[link](/uri \"title\")" << u"{L(/uri):link}"_s;
    QTest::newRow("link with parenthesised title") << "[a](b (t))" << u"{L(b):a}"_s;
    QTest::newRow("nested brackets") << "[link [nested]](/u)" << u"{L(/u):link [nested]}"_s;
    QTest::newRow("pointy destination") << "[a](<b c>)" << u"{L(b c):a}"_s;
    QTest::newRow("balanced parentheses") << "[a](f(x))" << u"{L(f(x)):a}"_s;
    QTest::newRow("empty destination") << "[a]()" << u"{L():a}"_s;
    QTest::newRow("unclosed link") << "[link](/uri" << u"[link](/uri"_s;
    QTest::newRow("space in destination") << "[a](b c)" << u"[a](b c)"_s;
    QTest::newRow("no link in link")
        << "[foo [bar](/uri)](/uri2)" << u"[foo {L(/uri):bar}](/uri2)"_s;
    QTest::newRow("links after a link") << "[a [b](c) [d](e)](f)" << u"[a {L(c):b} {L(e):d}](f)"_s;
    QTest::newRow("opener under a link stays text")
        << "[x [a](b) [c] y](z)" << u"[x {L(b):a} [c] y](z)"_s;
    QTest::newRow("link in image") << "![foo [bar](/u)](/i)" << u"{I(/i):foo }{L(/u)I(/u):bar}"_s;
    QTest::newRow("text around link") << "x [[y](z) w" << u"x [{L(z):y} w"_s;
    QTest::newRow("emphasis in link")
        << "[link *foo **bar** `#`*](/uri)"
        << "{L(/uri):link }{EL(/uri):foo }{ESL(/uri):bar}{EL(/uri): }{ECL(/uri):#}";
    QTest::newRow("brackets alone") << "[a] ] [" << u"[a] ] ["_s;
    QTest::newRow("escaped destination") << "[a](b\\)c)" << u"{L(b)c):a}"_s;
    QTest::newRow("image") << "![alt *x*](i.png \"t\")" << u"{I(i.png):alt }{EI(i.png):x}"_s;
    QTest::newRow("bang without bracket") << "Hi! there" << u"Hi! there"_s;
    QTest::newRow("autolink") << "<https://example.com/a?b>"
                              << u"{L(https://example.com/a?b):https://example.com/a?b}"_s;
    QTest::newRow("email autolink")
        << "<foo@bar.example.com>" << u"{L(mailto:foo@bar.example.com):foo@bar.example.com}"_s;
    QTest::newRow("not an autolink") << "<a b> <x:y z> <@x>" << u"<a b> <x:y z> <@x>"_s;
    QTest::newRow("html stays text") << "<b>bold</b>" << u"<b>bold</b>"_s;
    // Blocks are not interpreted, white space survives.
    QTest::newRow("block markers")
        << "# Heading\n- item\n> quote\n1. one" << u"# Heading\n- item\n> quote\n1. one"_s;
    QTest::newRow("white space kept") << "a  b\n\n  c\t d  " << u"a  b\n\n  c\t d  "_s;
    QTest::newRow("empty") << "" << u""_s;
    QTest::newRow("emoji around emphasis") << "🙂*joy*🙂" << u"🙂{E:joy}🙂"_s;
}

void MarkdownTextTest::parse()
{
    QFETCH(QString, source);
    QFETCH(QString, expected);
    QCOMPARE(Test::describeRuns(markdownAttributedString(source)), expected);
}

void MarkdownTextTest::strippedTextKeepsOnlyInputCharacters()
{
    // Without references, the visible text is made of input characters only.
    const QStringList sources = {QStringLiteral("**a *b** c*"), QStringLiteral("[[[x](y)]]"),
        QStringLiteral("*_*_~~`~`~~_*_*"), QStringLiteral("![![a](b)](c)")};
    for (const QString &source : sources) {
        const QString stripped = strippedMarkdown(source);
        for (QChar c : stripped)
            QVERIFY2(source.contains(c), qPrintable(source));
    }
}

VESKO_TEST_MAIN(MarkdownTextTest)
#include "tst_markdowntext.moc"
