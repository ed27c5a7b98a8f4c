# Recipe: rectangles are half-open: 0, 0, 10, 10 holds x and y from 0 to 9.
a = new 工具.矩形
a.初始化(0, 0, 10, 10)
print a.包含点(0, 0), a.包含点(9, 9), a.包含点(10, 5)
b = new 工具.矩形
b.初始化(10, 0, 20, 10)
# Sharing an edge is not meeting.
print a.是否相交(b)
b.偏移(-5, 5)
print b.到文本(), a.是否相交(b)
u = new 工具.矩形
u.到对象(a.到文本())
u.合并(b)
print u.到文本()
i = new 工具.矩形
i.到对象(a.到文本())
i.求交集(b)
print i.到文本(), i.宽度, i.高度
# An empty rectangle leaves a union as it was.
e = new 工具.矩形
u.合并(e)
print u.到文本(), e.是否为空()
p = new 工具.坐标点
p.初始化(5, 5)
print i.包含坐标点(p)
