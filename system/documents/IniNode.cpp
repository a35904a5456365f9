#include "IniReaderWriter.h"

#include <memory>
#include <strings.h>
#include <utility>

using Node = IniReaderWriter::Node;

Node::Node(Type lineType, std::string lineKey, std::string lineValue)
    : type(lineType), key(std::move(lineKey)), value(std::move(lineValue))
{
    if (type == Head)
        head = this;
}

Node::~Node()
{
    if (bulkDelete)
        return;
    if (type == Head)
        MoveSectionTo(previousHead);
    if (previous)
        previous->next = next;
    if (next)
        next->previous = previous;
    if (previousHead)
        previousHead->nextHead = nextHead;
    if (nextHead)
        nextHead->previousHead = previousHead;
}

std::string& Node::operator[](const std::string& name)
{
    Node* const end = LastOfSection()->next;
    for (Node* line = FirstOfSection(); line != end; line = line->next)
        if (line->type == KeyValue && strcasecmp(line->key.c_str(), name.c_str()) == 0)
            return line->value;

    auto added = std::make_unique<Node>(KeyValue, name, std::string());
    added->head = head;
    added->LinkBetween(LastOfSection(), end);
    return added.release()->value; // the list owns it now
}

void Node::LinkBetween(Node* before, Node* behind)
{
    previous = before;
    next = behind;
    if (before)
        before->next = this;
    if (behind)
        behind->previous = this;
}

void Node::MoveSectionTo(Node* newHead)
{
    for (Node* line = next; line && line->type != Head; line = line->next)
        line->head = newHead;
}

Node* Node::FirstOfSection()
{
    if (head)
        return head;
    Node* line = this;
    while (line->previous)
        line = line->previous;
    return line;
}

Node* Node::LastOfSection()
{
    Node* line = this;
    while (line->next && line->next->type != Head)
        line = line->next;
    return line;
}
