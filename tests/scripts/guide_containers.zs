# Recipe: a list keeps its objects alive; a stack keeps bare pointers, so
# keep what you push alive elsewhere (here in the list).
keep = new 工具.列表
undo = new 工具.栈
step = new 工具.文本类
step.文本 = "type a"
keep.加入项目(step, 真)
undo.加入(step)
step = new 工具.文本类
step.文本 = "type b"
keep.加入项目(step, 真)
undo.加入(step)
step = null
print keep.取项目数(), undo.取项目数()
# Undo: look at the top, then pop it.
print undo.取项目().文本
undo.删除()
print undo.取项目().文本
undo.删除()
print undo.是否为空(), undo.取项目()
# The list still holds both; positions count from 0.
print keep.取项目(1).文本
keep.删除项目(0)
print keep.取项目数(), keep.取项目(0).文本
