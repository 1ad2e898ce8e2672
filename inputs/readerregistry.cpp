#include "readerregistry.h"

#include "delimitedreader.h"
#include "fixedwidthreader.h"
#include "inputnode.h"
#include "jsonreader.h"
#include "plaintextreader.h"
#include "vcardreader.h"
#include "xlsreader.h"
#include "xlsxreader.h"
#include "xmlreader.h"

// One line per format. Text formats take a function of the shape
// bool read(const QString &text, const InputOptions &, Dataset &, ReadReport &), Excel the
// same with the file's path; the line formats take a TextSource and decode as they go.
void registerInputReaders()
{
    InputNode::setReader(IONode::DelimitedText, InputNode::StreamReader(readDelimited));
    InputNode::setReader(IONode::FixedWidth, InputNode::StreamReader(readFixedWidth));
    InputNode::setReader(IONode::PlainText, InputNode::StreamReader(readPlainText));
    InputNode::setReader(IONode::Json, InputNode::TextReader(readJson));
    InputNode::setReader(IONode::Xml, InputNode::TextReader(readXml));
    InputNode::setReader(IONode::VCard, InputNode::TextReader(readVCard));
    InputNode::setReader(IONode::ExcelXlsx, InputNode::TextReader(readXlsxInput));
    InputNode::setReader(IONode::ExcelXls, InputNode::TextReader(readXlsInput));
}
