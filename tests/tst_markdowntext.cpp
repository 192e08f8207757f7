// SPDX-License-Identifier: GPL-3.0-or-later
//
// The inline Markdown parse against the rules of CommonMark (with
// strikethrough). Results are written as text: an attributed piece is
// "{flags:text}" with E emphasis, S strong, X strikethrough, C code,
// L(target) link and I(target) image.

#include "TestEnvironment.h"

#include "store/MarkdownText.h"

using namespace Vesko;

namespace {

QString describe(const MarkdownText &parsed)
{
    QString out;
    qsizetype at = 0;
    for (const MarkdownRun &run : parsed.runs) {
        out += parsed.text.mid(at, run.start - at);
        QString flags;
        if (run.attributes & MarkdownRun::Emphasis)
            flags += u'E';
        if (run.attributes & MarkdownRun::Strong)
            flags += u'S';
        if (run.attributes & MarkdownRun::Strikethrough)
            flags += u'X';
        if (run.attributes & MarkdownRun::Code)
            flags += u'C';
        if (run.attributes & MarkdownRun::Link)
            flags += QStringLiteral("L(") + run.destination + u')';
        if (run.attributes & MarkdownRun::Image)
            flags += QStringLiteral("I(") + run.destination + u')';
        out += u'{' + flags + u':' + parsed.text.mid(run.start, run.length) + u'}';
        at = run.start + run.length;
    }
    return out + parsed.text.mid(at);
}

} // namespace

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
    QTest::newRow("emphasis") << "*foo bar*"
                              << "{E:foo bar}";
    QTest::newRow("not left-flanking") << "a * foo bar*"
                                       << "a * foo bar*";
    QTest::newRow("intraword star") << "foo*bar*"
                                    << "foo{E:bar}";
    QTest::newRow("intraword underscore") << "foo_bar_"
                                          << "foo_bar_";
    QTest::newRow("underscore inside") << "_foo_bar_"
                                       << "{E:foo_bar}";
    QTest::newRow("snake case stays") << "snake_case_name"
                                      << "snake_case_name";
    QTest::newRow("strong") << "**foo bar**"
                            << "{S:foo bar}";
    QTest::newRow("strong underscore") << "__foo__"
                                       << "{S:foo}";
    QTest::newRow("both") << "***strong emph***"
                          << "{ES:strong emph}";
    QTest::newRow("strong inside emphasis") << "*foo**bar**baz*"
                                            << "{E:foo}{ES:bar}{E:baz}";
    QTest::newRow("rule of three") << "*foo**bar*"
                                   << "{E:foo**bar}";
    QTest::newRow("intraword both") << "foo***bar***baz"
                                    << "foo{ES:bar}baz";
    QTest::newRow("leftover opener") << "**foo*"
                                     << "*{E:foo}";
    QTest::newRow("leftover closer") << "*foo**"
                                     << "{E:foo}*";
    QTest::newRow("mixed characters do not match") << "*foo _bar* baz_"
                                                   << "{E:foo _bar} baz_";
    QTest::newRow("nested same") << "*(*foo*)*"
                                 << "{E:(foo)}";
    QTest::newRow("quotes inside strong") << "**foo \"*bar*\" foo**"
                                          << "{S:foo \"}{ES:bar}{S:\" foo}";
    QTest::newRow("punctuation before") << "*$*alpha."
                                        << "*$*alpha.";
    QTest::newRow("unicode punctuation flanks") << "«*quote*»"
                                                << "«{E:quote}»";
    QTest::newRow("space-surrounded star") << "a * b * c"
                                           << "a * b * c";
    QTest::newRow("unmatched") << "*foo"
                               << "*foo";

    // Strikethrough.
    QTest::newRow("strikethrough") << "~~gone~~"
                                   << "{X:gone}";
    QTest::newRow("single tilde") << "~gone~"
                                  << "{X:gone}";
    QTest::newRow("tilde lengths differ") << "~~a~"
                                          << "~~a~";
    QTest::newRow("three tildes are text") << "~~~a~~~"
                                           << "~~~a~~~";

    // Code spans.
    QTest::newRow("code") << "`foo`"
                          << "{C:foo}";
    QTest::newRow("code with backtick inside") << "`` foo ` bar ``"
                                               << "{C:foo ` bar}";
    QTest::newRow("code strips one space") << "` `` `"
                                           << "{C:``}";
    QTest::newRow("code strips only one") << "`  ``  `"
                                          << "{C: `` }";
    QTest::newRow("code of spaces stays") << "`  `"
                                          << "{C:  }";
    QTest::newRow("code newline becomes space") << "`a\nb`"
                                                << "{C:a b}";
    QTest::newRow("unclosed code") << "`foo"
                                   << "`foo";
    QTest::newRow("run lengths differ") << "```foo``"
                                        << "```foo``";
    QTest::newRow("code beats emphasis") << "*a `*` b*"
                                         << "{E:a }{EC:*}{E: b}";
    QTest::newRow("no escapes in code") << "`foo\\`bar`"
                                        << "{C:foo\\}bar`";

    // Escapes and references.
    QTest::newRow("escaped star") << "\\*not emphasized*"
                                  << "*not emphasized*";
    QTest::newRow("escaped backtick") << "\\`not code`"
                                      << "`not code`";
    QTest::newRow("backslash before letter") << "\\a\\\\"
                                             << "\\a\\";
    QTest::newRow("hard break") << "a\\\nb"
                                << "a\nb";
    QTest::newRow("entities") << "&amp; &copy; &#35; &#x22; &nbsp;x &hellip; &bogus; &#0; & amp;"
                              << "& © # \" \u00A0x … &bogus; \uFFFD & amp;";
    QTest::newRow("entity needs semicolon") << "&amp &copy"
                                            << "&amp &copy";

    // Links, images and autolinks.
    QTest::newRow("link with title") << "[link](/uri \"title\")"
                                     << "{L(/uri):link}";
    QTest::newRow("link with parenthesised title") << "[a](b (t))"
                                                   << "{L(b):a}";
    QTest::newRow("nested brackets") << "[link [nested]](/u)"
                                     << "{L(/u):link [nested]}";
    QTest::newRow("pointy destination") << "[a](<b c>)"
                                        << "{L(b c):a}";
    QTest::newRow("balanced parentheses") << "[a](f(x))"
                                          << "{L(f(x)):a}";
    QTest::newRow("empty destination") << "[a]()"
                                       << "{L():a}";
    QTest::newRow("unclosed link") << "[link](/uri"
                                   << "[link](/uri";
    QTest::newRow("space in destination") << "[a](b c)"
                                          << "[a](b c)";
    QTest::newRow("no link in link") << "[foo [bar](/uri)](/uri2)"
                                     << "[foo {L(/uri):bar}](/uri2)";
    QTest::newRow("links after a link") << "[a [b](c) [d](e)](f)"
                                        << "[a {L(c):b} {L(e):d}](f)";
    QTest::newRow("opener under a link stays text") << "[x [a](b) [c] y](z)"
                                                    << "[x {L(b):a} [c] y](z)";
    QTest::newRow("link in image") << "![foo [bar](/u)](/i)"
                                   << "{I(/i):foo }{L(/u)I(/u):bar}";
    QTest::newRow("text around link") << "x [[y](z) w"
                                      << "x [{L(z):y} w";
    QTest::newRow("emphasis in link")
        << "[link *foo **bar** `#`*](/uri)"
        << "{L(/uri):link }{EL(/uri):foo }{ESL(/uri):bar}{EL(/uri): }{ECL(/uri):#}";
    QTest::newRow("brackets alone") << "[a] ] ["
                                    << "[a] ] [";
    QTest::newRow("escaped destination") << "[a](b\\)c)"
                                         << "{L(b)c):a}";
    QTest::newRow("image") << "![alt *x*](i.png \"t\")"
                           << "{I(i.png):alt }{EI(i.png):x}";
    QTest::newRow("bang without bracket") << "Hi! there"
                                          << "Hi! there";
    QTest::newRow("autolink") << "<https://example.com/a?b>"
                              << "{L(https://example.com/a?b):https://example.com/a?b}";
    QTest::newRow("email autolink") << "<foo@bar.example.com>"
                                    << "{L(mailto:foo@bar.example.com):foo@bar.example.com}";
    QTest::newRow("not an autolink") << "<a b> <x:y z> <@x>"
                                     << "<a b> <x:y z> <@x>";
    QTest::newRow("html stays text") << "<b>bold</b>"
                                     << "<b>bold</b>";

    // Blocks are not interpreted, white space survives.
    QTest::newRow("block markers") << "# Heading\n- item\n> quote\n1. one"
                                   << "# Heading\n- item\n> quote\n1. one";
    QTest::newRow("white space kept") << "a  b\n\n  c\t d  "
                                      << "a  b\n\n  c\t d  ";
    QTest::newRow("empty") << ""
                           << "";
    QTest::newRow("emoji around emphasis") << "🙂*joy*🙂"
                                           << "🙂{E:joy}🙂";
}

void MarkdownTextTest::parse()
{
    QFETCH(QString, source);
    QFETCH(QString, expected);
    QCOMPARE(describe(markdownAttributedString(source)), expected);
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
