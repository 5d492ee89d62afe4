// korel2d-convert: turns a view file from one stored form into the other, binary or XML, or a
// symbol library into a view of its symbols in either form.
//
// OUT is replaced only by a whole file that has been read back and holds what IN held, less what
// its form can't carry; on any failure OUT stays as it was and nothing else is left behind. The
// sources are taken as stored, not matched to plug-ins, so the output doesn't depend on what is
// installed; numbers are written in the "C" locale whatever the user's.
#include "KorelEdit.h"
#include "LibraryLog.h"
#include "StoredLists.h"
#include "SymbolView.h"

#include <cerrno>
#include <clocale>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <string>
#include <unistd.h>

namespace {

constexpr int kDone = 0, kFailed = 1, kBadArguments = 2;

const char* const kUsage = "usage: korel2d-convert IN OUT [--to xml|bin]\n";
const std::string kHelp =
    "Converts a view file between its binary and its XML form, or a symbol library into a view.\n"
    "The form of IN is read from its first bytes: a binary view file's header, '<' for XML, or,\n"
    "in text, a line of the first " + std::to_string(korelgen::kSymbolHeadBytes) +
    " bytes beginning with the keyword SYMBOL-NR. for a symbol\n"
    "library, whose symbols become groups on a white page covering their box and " +
    std::to_string(int(korelgen::kSymbolPageMargin)) + " units on\n"
    "every side. The form of OUT is given by --to, else by OUT's name: XML for a name ending in\n"
    ".xml, binary otherwise. OUT is replaced only by a file that was written whole and read back.\n"
    "Exit status: 0 done, 1 IN can't be read or OUT can't be written (OUT then unchanged),\n"
    "2 bad arguments.\n";
// The magic text at the start of every binary view file.
const char kBinaryMagic[] = "VIEW FILE";
// How far into a file its form is looked for: XML text may follow some blank lines.
constexpr size_t kFormBytes = 4096;

enum class Form { Binary, Xml, Symbols };

struct Options {
    std::string in, out;
    Form to = Form::Binary;
    bool help = false;
};

bool endsWith(const std::string& text, const std::string& suffix)
{
    return text.size() >= suffix.size() && text.compare(text.size() - suffix.size(), suffix.size(), suffix) == 0;
}

// "" when the arguments are good, else what is wrong with them.
std::string parseArguments(int argc, char** argv, Options* o)
{
    std::string to;
    int files = 0;
    for (int i = 1; i < argc; ++i) {
        const std::string arg = argv[i];
        if (arg == "--help" || arg == "-h") {
            o->help = true;
        } else if (arg == "--to") {
            if (i + 1 == argc)
                return "--to needs a value: xml or bin";
            to = argv[++i];
            if (to != "xml" && to != "bin")
                return "--to " + to + ": the form must be xml or bin";
        } else if (arg.size() > 1 && arg[0] == '-') {
            return "unknown option " + arg;
        } else if (files == 2) {
            return "IN and OUT only, but " + arg + " follows";
        } else {
            (files++ == 0 ? o->in : o->out) = arg;
        }
    }
    if (o->help)
        return "";
    if (files < 2)
        return files == 0 ? "no IN and OUT given" : "no OUT given";
    const std::string base = o->out.substr(o->out.rfind('/') + 1);
    if (base.empty() || base == "." || base == "..")
        return "OUT " + o->out + " names a directory, not a file";
    const bool xml = to.empty() ? endsWith(o->out, ".xml") : to == "xml";
    o->to = xml ? Form::Xml : Form::Binary;
    return "";
}

// A failure's one line: the file it concerns and why.
struct Failure {
    std::string what; // "read IN" or "write OUT"
    std::string reason;
};

bool fail(Failure* failure, const std::string& what, const std::string& reason)
{
    *failure = {what, reason};
    return false;
}

// The library's log since it was last emptied, on one line.
std::string libraryLogLine()
{
    std::string text = takeLibraryLog();
    for (char& c : text)
        if (c == '\n')
            c = ' ';
    return text;
}

// The form of a file from its first bytes: a binary view file begins with its magic text, an XML
// one with '<' after blanks and a byte-order mark; a symbol library is told by its keyword.
bool readForm(const std::string& path, Form* form, std::string* reason)
{
    FILE* file = std::fopen(path.c_str(), "rb");
    if (!file) {
        *reason = std::strerror(errno);
        return false;
    }
    char head[kFormBytes];
    const size_t n = std::fread(head, 1, sizeof head, file);
    std::fclose(file);
    const size_t magic = sizeof kBinaryMagic - 1;
    if (n >= magic && std::memcmp(head, kBinaryMagic, magic) == 0) {
        *form = Form::Binary;
        return true;
    }
    size_t at = n >= 3 && std::memcmp(head, "\xEF\xBB\xBF", 3) == 0 ? 3 : 0;
    while (at < n && head[at] && std::strchr(" \t\r\n", head[at]))
        ++at;
    if (at < n && head[at] == '<') {
        *form = Form::Xml;
        return true;
    }
    if (korelgen::isSymbolFile(path)) {
        *form = Form::Symbols;
        return true;
    }
    *reason = "not a view file, neither binary nor XML, nor a symbol library";
    return false;
}

// A binary file of a revision the library doesn't read loads as an empty view with the reason in
// the log; other messages beside what loaded (a bad font) are no failure.
bool loadBinary(const std::string& path, StoredLists* stored, std::string* reason)
{
    getLogMsg(nullptr, 0);
    VIEW_STRUCT& v = stored->view;
    const int result = loadFile(path.c_str(), &v.elements, &v.dataTypes, &v);
    const std::string log = libraryLogLine();
    if (result == 0 && (v.elements || v.dataTypes || log.empty()))
        return true;
    *reason = log.empty() ? "not a view file" : log;
    return false;
}

// A document that breaks midway loads what stands before the break: refused all the same.
bool loadXml(const std::string& path, StoredLists* stored, std::string* reason)
{
    XML_LOAD_REPORT report = {};
    VIEW_STRUCT& v = stored->view;
    loadFileXmlReport(path.c_str(), &v.elements, &v.dataTypes, &v, &report);
    if (report.result != 0) {
        *reason = report.reason;
        return false;
    }
    if (report.broken) {
        *reason = "broken XML at line " + std::to_string(report.line) + ", column " + std::to_string(report.column) +
                  ": " + report.reason;
        return false;
    }
    return true;
}

bool load(const std::string& path, Form form, StoredLists* stored, std::string* reason)
{
    switch (form) {
    case Form::Xml: return loadXml(path, stored, reason);
    case Form::Symbols: return korelgen::loadSymbolView(path, &stored->view, reason);
    case Form::Binary: break;
    }
    return loadBinary(path, stored, reason);
}

// Kinds the XML form has a word for; the others are left out of an XML file with their actions.
bool writtenToXml(uint32_t kind)
{
    switch (kind) {
    case KR_GRAPH:
    case KR_RECT:
    case KR_POLYLINE:
    case KR_CIRCLE:
    case KR_TEXT:
    case KR_LINE:
    case KR_ARC:
    case KR_IMAGE:
    case KR_GROUP:
    case KR_BUTTON:
    case KR_CPOLY:
    case KR_SCISSOR:
        return true;
    default:
        return false;
    }
}

template <class Record> long listLength(const Record* head)
{
    long n = 0;
    for (; head; head = head->next)
        ++n;
    return n;
}

// What a file of the form `form` holds of a view, in numbers, to tell a read-back that lost
// something from one that holds it all.
struct Counts {
    long elements = 0, actions = 0, variables = 0;

    Counts(const VIEW_STRUCT& view, Form form)
    {
        addElements(view.elements, form);
        for (const DD_DATA_TYPE_STRUCT* source = view.dataTypes; source; source = source->next)
            variables += listLength(source->variables);
    }
    void addElements(const ELEMENT_STRUCT* element, Form form)
    {
        for (; element; element = element->next)
            if (form == Form::Binary || writtenToXml(element->type)) {
                ++elements;
                actions += listLength(element->actions);
                addElements(element->child, form);
            }
    }
    bool operator==(const Counts& o) const
    {
        return elements == o.elements && actions == o.actions && variables == o.variables;
    }
    std::string text() const
    {
        return std::to_string(elements) + " elements, " + std::to_string(actions) + " actions, " +
               std::to_string(variables) + " variables";
    }
};

std::string directoryOf(const std::string& path)
{
    const size_t slash = path.rfind('/');
    return slash == std::string::npos ? "." : slash == 0 ? "/" : path.substr(0, slash);
}

// The new file is made in a directory of its own beside OUT, under OUT's own name, as an XML
// file stores the name it was written under: so the bytes don't depend on a temporary name, and
// the rename stays on OUT's file system. The working directory is that directory meanwhile.
class Scratch {
public:
    explicit Scratch(const std::string& out)
        : directory_(directoryOf(out) + "/.korel2d-convert-XXXXXX"), name_(out.substr(out.rfind('/') + 1)),
          home_(open(".", O_RDONLY | O_DIRECTORY | O_CLOEXEC))
    {
        made_ = home_ >= 0 && mkdtemp(&directory_[0]) && chdir(directory_.c_str()) == 0;
        error_ = made_ ? 0 : errno;
    }
    ~Scratch()
    {
        if (home_ < 0)
            return;
        // Back home first: the directory's name holds from there.
        if (fchdir(home_) == 0 && made_) {
            unlink((directory_ + "/" + name_).c_str());
            rmdir(directory_.c_str());
        }
        close(home_);
    }
    Scratch(const Scratch&) = delete;
    Scratch& operator=(const Scratch&) = delete;

    bool made() const { return made_; }
    int error() const { return error_; }
    const std::string& name() const { return name_; }
    // Moves the file onto OUT, its data on disk first, so that OUT is never a part of a file.
    bool moveOut() const
    {
        const int file = open(name_.c_str(), O_RDONLY | O_CLOEXEC);
        const bool synced = file >= 0 && fsync(file) == 0;
        if (file >= 0)
            close(file);
        return synced && rename(name_.c_str(), ("../" + name_).c_str()) == 0;
    }

private:
    std::string directory_, name_;
    int home_;
    bool made_ = false;
    int error_ = 0;
};

bool save(const std::string& path, Form form, const StoredLists& stored)
{
    const VIEW_STRUCT& v = stored.view;
    if (form == Form::Xml)
        return saveFileXml(path.c_str(), v.elements, v.dataTypes, &v) == 0; // tells nothing; the read-back does
    return saveFile(path.c_str(), v.elements, v.dataTypes, &v) == 0;
}

bool convert(const Options& o, Form inForm, Failure* failure)
{
    StoredLists stored;
    std::string reason;
    if (!load(o.in, inForm, &stored, &reason))
        return fail(failure, "read " + o.in, reason);
    const Counts expected(stored.view, o.to);

    const std::string writeOut = "write " + o.out;
    Scratch scratch(o.out);
    if (!scratch.made())
        return fail(failure, writeOut, std::strerror(scratch.error()));
    errno = 0;
    if (!save(scratch.name(), o.to, stored))
        return fail(failure, writeOut, errno ? std::strerror(errno) : "the file could not be written whole");
    StoredLists back;
    if (!load(scratch.name(), o.to, &back, &reason))
        return fail(failure, writeOut, "the written file does not read back: " + reason);
    const Counts found(back.view, o.to);
    if (!(found == expected))
        return fail(failure, writeOut, "the written file reads back with " + found.text() + ", not " + expected.text());
    if (!scratch.moveOut())
        return fail(failure, writeOut, std::strerror(errno));
    return true;
}

} // namespace

int main(int argc, char** argv)
{
    Options o;
    const std::string wrong = parseArguments(argc, argv, &o);
    if (!wrong.empty()) {
        std::fprintf(stderr, "korel2d-convert: %s\n%s", wrong.c_str(), kUsage);
        return kBadArguments;
    }
    if (o.help) {
        std::printf("%s%s", kUsage, kHelp.c_str());
        return kDone;
    }
    // Messages in the user's language, numbers in files always with a decimal point.
    std::setlocale(LC_ALL, "");
    std::setlocale(LC_NUMERIC, "C");
    // Past a file-size limit a write fails instead of ending the process, so the temporary file
    // can be removed.
    std::signal(SIGXFSZ, SIG_IGN);

    Form inForm = Form::Binary;
    std::string reason;
    Failure failure;
    if (!readForm(o.in, &inForm, &reason))
        failure = {"read " + o.in, reason};
    else if (convert(o, inForm, &failure))
        return kDone;
    std::fprintf(stderr, "korel2d-convert: cannot %s: %s\n", failure.what.c_str(), failure.reason.c_str());
    return kFailed;
}
