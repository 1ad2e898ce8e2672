#include "outputs/writerregistry.h"

#include "outputs/delimitedwriter.h"
#include "outputs/fixedwidthwriter.h"
#include "outputs/outputnode.h"
#include "outputs/plaintextwriter.h"

void registerOutputWriters()
{
    OutputNode::setWriter(IONode::DelimitedText, OutputNode::textFileWriter(writeDelimited));
    OutputNode::setWriter(IONode::FixedWidth, OutputNode::textFileWriter(writeFixedWidth));
    OutputNode::setWriter(IONode::PlainText, OutputNode::textFileWriter(writePlainText));
}
