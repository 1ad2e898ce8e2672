#include "outputs/writerregistry.h"

#include "outputs/delimitedwriter.h"
#include "outputs/fixedwidthwriter.h"
#include "outputs/htmlwriter.h"
#include "outputs/jsonwriter.h"
#include "outputs/markdownwriter.h"
#include "outputs/outputnode.h"
#include "outputs/plaintextwriter.h"
#include "outputs/vcardwriter.h"
#include "outputs/xlsworkbookwriter.h"
#include "outputs/xlsxworkbookwriter.h"
#include "outputs/xmlwriter.h"
#include "outputs/yamlwriter.h"

void registerOutputWriters()
{
    OutputNode::setWriter(IONode::DelimitedText, OutputNode::textFileWriter(writeDelimited));
    OutputNode::setWriter(IONode::FixedWidth, OutputNode::textFileWriter(writeFixedWidth));
    OutputNode::setWriter(IONode::PlainText, OutputNode::textFileWriter(writePlainText));
    OutputNode::setWriter(IONode::Json, OutputNode::textFileWriter(writeJson));
    OutputNode::setWriter(IONode::Xml, OutputNode::textFileWriter(writeXml));
    OutputNode::setWriter(IONode::Yaml, OutputNode::textFileWriter(writeYaml));
    OutputNode::setWriter(IONode::VCard, OutputNode::textFileWriter(writeVCard));
    OutputNode::setWriter(IONode::Html, OutputNode::textFileWriter(writeHtml));
    OutputNode::setWriter(IONode::Markdown, OutputNode::textFileWriter(writeMarkdown));
    OutputNode::setWriter(IONode::ExcelXlsx, OutputNode::workbookFileWriter(writeXlsxWorkbook));
    OutputNode::setWriter(IONode::ExcelXls, OutputNode::workbookFileWriter(writeXlsWorkbook));
}
