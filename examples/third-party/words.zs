# 词频.统计 beside 工具's classes: run with the folder of 词频.ncl in ZELCLS_PATHS.
counter = new 词频.统计
counter.添加文本("the cat and the hat")
counter.添加字节集(x"e4bda0e5a5bd20746865e38082e4bda0e5a5bd")
print counter.总数
print counter.单词数
print counter.取次数("the")
print counter.取次数("你好")
print counter.最常见()
print 词频.统计.是单词("hat")
print 词频.统计.是单词("a hat")

# A text assembled by 工具.文本类 is counted like any other.
text = new 工具.文本类
text.添加("hat hat")
counter.添加文本(text.文本)
print counter.最常见()
list = new 工具.列表
list.加入项目(counter, 真)
print list.取项目数()
counter.清空()
print counter.总数
expect counter.最常见() == ""
