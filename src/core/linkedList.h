// The library's lists are linked through `next` and `prev` fields of their records; these
// two operations serve all of them.
#pragma once

// Adds `item` at the tail of the list.
template <class Node> void appendNode(Node** head, Node* item)
{
    item->next = nullptr;
    if (!*head) {
        item->prev = nullptr;
        *head = item;
        return;
    }
    Node* last = *head;
    while (last->next)
        last = last->next;
    last->next = item;
    item->prev = last;
}

// Takes `item` out of the list, moving the head on if it was the head. Its own links stay,
// so that an editing tool can still see where it was.
template <class Node> void cutNode(Node** head, Node* item)
{
    if (item->prev)
        item->prev->next = item->next;
    if (item->next)
        item->next->prev = item->prev;
    if (*head == item)
        *head = item->next;
}

// Takes `item` out of the list and clears its links.
template <class Node> void unlinkNode(Node** head, Node* item)
{
    cutNode(head, item);
    item->next = item->prev = nullptr;
}

// Puts `item` beside `position`, or beside the head for a null position; into an empty list
// as its only entry.
template <class Node> void insertNode(Node* item, Node* position, Node** head, bool before)
{
    if (!position)
        position = *head;
    if (!position) {
        item->next = item->prev = nullptr;
        *head = item;
        return;
    }
    Node* prev = before ? position->prev : position;
    Node* next = before ? position : position->next;
    item->prev = prev;
    item->next = next;
    if (prev)
        prev->next = item;
    else
        *head = item;
    if (next)
        next->prev = item;
}

// Appends in O(1) by remembering the tail: readers build long lists in file order.
template <class Node> class TailAppender {
public:
    explicit TailAppender(Node** head) : head_(head), tail_(*head)
    {
        while (tail_ && tail_->next)
            tail_ = tail_->next;
    }
    void add(Node* item)
    {
        item->next = nullptr;
        item->prev = tail_;
        if (tail_)
            tail_->next = item;
        else
            *head_ = item;
        tail_ = item;
    }

private:
    Node** head_;
    Node* tail_;
};
