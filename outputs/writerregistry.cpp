#include "outputs/writerregistry.h"

#include "outputs/delimitedwriter.h"
#include "outputs/fixedwidthwriter.h"
#include "outputs/outputnode.h"
#include "outputs/plaintextwriter.h"
#include "outputs/xlsworkbookwriter.h"
#include "outputs/xlsxworkbookwriter.h"

void registerOutputWriters()
{
    OutputNode::setWriter(IONode::DelimitedText, OutputNode::textFileWriter(writeDelimited));
    OutputNode::setWriter(IONode::FixedWidth, OutputNode::textFileWriter(writeFixedWidth));
    OutputNode::setWriter(IONode::PlainText, OutputNode::textFileWriter(writePlainText));
    OutputNode::setWriter(IONode::ExcelXlsx, OutputNode::workbookFileWriter(writeXlsxWorkbook));
    OutputNode::setWriter(IONode::ExcelXls, OutputNode::workbookFileWriter(writeXlsWorkbook));
}
