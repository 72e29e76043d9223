# Shows what values.cpp holds; values.expected tells how that looks.
set width 0
set print address off
set confirm off
break shown
run
print values.emptyList
print values.list
print values.singleList
print values.points
print values.tree
print *values.tree.pRoot_
print values.heap
print *(NQBinHeapCell*)values.heap.pLast_
# A list that promises more than its links hold.
set var values.damaged.length_ = 2
print values.damaged
print *values.list.pFirst_
print values.noText
print values.emptyText
print values.text
print values.message
print values.label
print values.handle
print values.pool
print values.emptyPool
print values.point
print values.size
print values.tuple
print values.rect
print values.box
print values.number
print values.real
kill
